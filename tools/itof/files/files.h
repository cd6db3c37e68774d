// Whole files in and out, and outputs that appear together or not at all.
#ifndef ITOF_TOOL_FILES_FILES_H_
#define ITOF_TOOL_FILES_FILES_H_

#include <bit>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace itoftool {

/// The bytes of values as files hold them, little-endian.
template <typename T>
std::span<const uint8_t> FileBytes(std::span<const T> values) {
  static_assert(std::endian::native == std::endian::little);
  return {reinterpret_cast<const uint8_t*>(values.data()), values.size_bytes()};
}

/// The bytes of a file of up to 256 MiB. Throws DataError, which names the file and the cause.
std::vector<uint8_t> ReadFile(const std::filesystem::path& path);

/// The output files of one command. They are written into a folder of their own inside `directory`, and get their names
/// there when Commit is called; without it, nothing remains of them, nor of folders made for them.
class StagedOutput {
 public:
  /// Makes `directory` where it is missing. Throws DataError.
  explicit StagedOutput(const std::filesystem::path& directory);
  ~StagedOutput();
  StagedOutput(const StagedOutput&) = delete;
  StagedOutput& operator=(const StagedOutput&) = delete;

  /// Writes the file that Commit will put at `name` in the directory. Throws DataError, also where a folder has that
  /// name.
  void Write(const std::string& name, std::span<const uint8_t> bytes);

  /// Moves all files to their names, over older ones. Throws DataError, with everything as it was before.
  void Commit();

 private:
  std::filesystem::path directory_;
  std::vector<std::filesystem::path> made_;  // folders made for the output, the innermost first
  std::filesystem::path stage_;
  std::vector<std::string> names_;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_FILES_H_
