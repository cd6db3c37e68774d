// Reads and writes whole files. The outputs of a command appear together or not at all.
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

/// Returns the extension of a file name in lower case, e.g. ".png"; empty if there is none.
std::string LowerCaseExtension(const std::filesystem::path& path);

/// Throws UsageError if writing one of `outputs` would replace one of `inputs`, also where symbolic links lead from one
/// name to the other. The text names the input and `option`, the option that gives the outputs. No file has to exist.
void RefuseToOverwrite(const std::vector<std::filesystem::path>& inputs,
                       const std::vector<std::filesystem::path>& outputs, const std::string& option);

/// Reads a file of up to 256 MiB. Throws DataError, which names the file and the cause.
std::vector<uint8_t> ReadFile(const std::filesystem::path& path);

/// The output files of one command. Write puts them into a temporary folder inside `directory`; Commit moves them to
/// their names. If Commit is not called, the destructor removes them and any folders made for them.
class StagedOutput {
 public:
  /// Makes `directory` if it is missing, and removes the temporary folders that killed runs left there; prints a note for
  /// each that holds files of the user. From then on, a first interrupt makes the next Write or Commit throw instead of
  /// ending the process. Throws DataError.
  explicit StagedOutput(const std::filesystem::path& directory);
  ~StagedOutput();
  StagedOutput(const StagedOutput&) = delete;
  StagedOutput& operator=(const StagedOutput&) = delete;

  /// Writes the file that Commit will move to `name` in the directory. Throws DataError, also if `name` exists there and
  /// is not a regular file.
  void Write(const std::string& name, std::span<const uint8_t> bytes);

  /// Moves all files to their names. Those that replace a file take over its mode. If it throws DataError, every file is
  /// as it was before, or the text names where the old files are.
  void Commit();

 private:
  /// Moves one file to its name and puts the older file aside. Throws DataError.
  void Replace(const std::string& name);
  /// Undoes Replace for the first `count` names. Returns the paths of files that could not be put back.
  std::string Restore(size_t count);
  /// Removes the temporary folder and the folders made for the output.
  void Discard();

  std::filesystem::path directory_;
  std::vector<std::filesystem::path> made_;  // folders made for the output, the innermost first
  std::filesystem::path stage_;              // the temporary folder; empty if there is none to remove
  int lock_ = -1;                            // descriptor that keeps other runs from removing it
  std::vector<std::string> names_;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_FILES_H_
