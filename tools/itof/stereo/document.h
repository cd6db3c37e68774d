// Reads YAML, XML and JSON files into one kind of tree.
#ifndef ITOF_TOOL_STEREO_DOCUMENT_H_
#define ITOF_TOOL_STEREO_DOCUMENT_H_

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace itoftool {

using Json = nlohmann::ordered_json;

/// A file as a tree. `root` is an object. A matrix as OpenCV writes it is an object with rows, cols, dt and data.
struct Document {
  std::string file;
  Json root;
};
using Documents = std::vector<Document>;

/// Reads a file of up to 16 MiB, whose format follows from its content. Numbers are decimal, also 010 in YAML; numbers
/// that are not finite stay, for the reader of their key to refuse. Throws DataError, which names file and cause, if
/// the file is damaged, contains no keys, repeats a key, or nests deeper than 100 levels.
Document ReadDocument(const std::filesystem::path& path);

/// Returns the value under a key of the tree, or null. A dot in `key` leads into an object.
const Json* Find(const Json& root, const std::string& key);

}  // namespace itoftool

#endif  // ITOF_TOOL_STEREO_DOCUMENT_H_
