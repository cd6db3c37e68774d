// Reads and writes files through the C library, whose errno names the cause of a failure.
#include "files/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>
#include <unordered_set>

#include "support/errors.h"
#include "support/interrupts.h"
#include "support/print.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

constexpr size_t kLargestFile = size_t{256} << 20;

constexpr char kStagePrefix[] = ".itof-partial-";  // of a StagedOutput's temporary folder
// Folders inside that folder: for the output's files, and for the files that they replace.
constexpr char kNew[] = "new", kOld[] = "old";

/// Writes to `path`; errors name `shownAs`, which the user knows.
void WriteBytes(const fs::path& path, const fs::path& shownAs, std::span<const uint8_t> bytes) {
  File file(std::fopen(path.c_str(), "wb"));
  if (!file) Fail(shownAs, std::strerror(errno));
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  if (!written || std::fflush(file.get()) != 0) Fail(shownAs, std::strerror(errno));
  if (std::fclose(file.release()) != 0) Fail(shownAs, std::strerror(errno));
}

/// Returns the absolute name of a file or folder, which need not exist, without symbolic links, "." and "..". A pipe
/// without a name keeps the one given.
fs::path Canonical(const fs::path& path) {
  std::error_code error;
  const fs::path canonical = fs::weakly_canonical(fs::absolute(path.empty() ? "." : path), error);
  return error ? path : canonical;
}

/// Makes `directory` and the folders that it needs. Puts those that it made into `made`, the innermost first. A symbolic
/// link that leads nowhere is an error: it is the user's.
void MakeFolders(const fs::path& directory, std::vector<fs::path>& made, std::error_code& error) {
  std::error_code ignored;
  if (directory.empty() || fs::symlink_status(directory, ignored).type() != fs::file_type::not_found) return;
  MakeFolders(directory.parent_path(), made, error);
  if (!error && fs::create_directory(directory, error)) made.insert(made.begin(), directory);
}

/// Locks a folder as long as this process lives, or the descriptor that it returns is open. Returns -1 if `path` is not
/// a folder or another process has locked it.
int LockFolder(const fs::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0) return descriptor;
  if (descriptor >= 0) close(descriptor);
  return -1;
}

/// Removes the temporary folders of runs that were killed. Keeps and names those with files that were put aside.
void ClearLeftovers(const fs::path& directory) {
  std::error_code ignored;
  std::vector<fs::path> stages;
  for (fs::directory_iterator entry(directory, ignored), end; entry != end; entry.increment(ignored)) {
    if (entry->path().filename().string().starts_with(kStagePrefix)) stages.push_back(entry->path());
  }
  for (const fs::path& stage : stages) {
    const int lock = LockFolder(stage);
    if (lock < 0) continue;
    // This folder is made last. Without it, a run may just have made the others.
    if (fs::is_directory(stage / kOld, ignored)) {
      fs::remove_all(stage / kNew, ignored);
      rmdir((stage / kOld).c_str());
      if (rmdir(stage.c_str()) != 0) {
        PrintMessage("note: " + (stage / kOld).string() + " holds files that a killed run was replacing");
      }
    }
    close(lock);
  }
}

/// Fails if `path` exists and is not a regular file. Replacing a device, a pipe or a link would destroy it.
void CheckReplaceable(const fs::path& path) {
  std::error_code ignored;
  switch (fs::symlink_status(path, ignored).type()) {
    case fs::file_type::not_found:
    case fs::file_type::regular:
    case fs::file_type::none:  // not known; moving the file there names the cause
      return;
    case fs::file_type::directory:
      Fail(path, "is a directory");
    case fs::file_type::symlink:
      Fail(path, "is a symbolic link, which would be replaced; give the name that it leads to");
    default:
      Fail(path, "exists and is not a regular file");
  }
}

void Rename(const fs::path& from, const fs::path& to, std::error_code& error) {
  error.clear();
  if (std::rename(from.c_str(), to.c_str()) != 0) error.assign(errno, std::generic_category());
}

}  // namespace

std::string LowerCaseExtension(const fs::path& path) {
  std::string extension = path.extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

void RefuseToOverwrite(const std::vector<fs::path>& inputs, const std::vector<fs::path>& outputs,
                       const std::string& option) {
  std::unordered_set<std::string> written;
  for (const fs::path& output : outputs) written.insert(Canonical(output).string());
  for (const fs::path& input : inputs) {
    if (written.contains(Canonical(input).string())) {
      throw UsageError(input.string() + ": is an input, and " + option + " would overwrite it");
    }
  }
}

std::vector<uint8_t> ReadFile(const fs::path& path) {
  const File file(std::fopen(path.c_str(), "rb"));
  if (!file) Fail(path, std::strerror(errno));
  std::vector<uint8_t> bytes;
  uint8_t chunk[65536];
  while (const size_t count = std::fread(chunk, 1, sizeof chunk, file.get())) {
    bytes.insert(bytes.end(), chunk, chunk + count);
    if (bytes.size() > kLargestFile) Fail(path, "is larger than 256 MiB");
  }
  if (std::ferror(file.get()) != 0) Fail(path, std::strerror(errno));
  return bytes;
}

StagedOutput::StagedOutput(const fs::path& directory) : directory_(Canonical(directory)) {
  CatchInterrupts();
  std::error_code error;
  MakeFolders(directory_, made_, error);
  if (!error) ClearLeftovers(directory_);
  std::string stage = (directory_ / (std::string(kStagePrefix) + "XXXXXX")).string();
  if (!error && mkdtemp(stage.data()) == nullptr) error.assign(errno, std::generic_category());
  if (!error) {
    stage_ = stage;
    lock_ = LockFolder(stage_);
    fs::create_directory(stage_ / kNew, error);
  }
  if (!error) fs::create_directory(stage_ / kOld, error);
  if (error) {
    Discard();
    Fail(directory_, error.message());
  }
}

StagedOutput::~StagedOutput() { Discard(); }

void StagedOutput::Discard() {
  std::error_code ignored;
  if (!stage_.empty()) fs::remove_all(stage_, ignored);
  if (lock_ >= 0) close(lock_);
  stage_.clear();
  lock_ = -1;
  // This removes empty folders only. Another process may have written into them.
  for (const fs::path& folder : made_) rmdir(folder.c_str());
}

void StagedOutput::Write(const std::string& name, std::span<const uint8_t> bytes) {
  CheckInterrupts();
  CheckReplaceable(directory_ / name);
  WriteBytes(stage_ / kNew / name, directory_ / name, bytes);
  names_.push_back(name);
}

void StagedOutput::Replace(const std::string& name) {
  const fs::path target = directory_ / name, written = stage_ / kNew / name, aside = stage_ / kOld / name;
  CheckReplaceable(target);
  std::error_code error, ignored;
  if (const fs::file_status old = fs::status(target, ignored); fs::exists(old)) {
    fs::permissions(written, old.permissions(), ignored);
    // Moving the old file leaves its name missing for a moment, so that is for file systems without hard links only.
    if (link(target.c_str(), aside.c_str()) != 0) Rename(target, aside, error);
  }
  if (!error) Rename(written, target, error);
  if (error) Fail(target, error.message());
}

std::string StagedOutput::Restore(size_t count) {
  std::string kept;
  // The last name was not replaced, and must not be removed.
  for (size_t i = 0; i < count; ++i) {
    std::error_code error, ignored;
    const fs::path target = directory_ / names_[i], aside = stage_ / kOld / names_[i];
    if (fs::exists(aside, ignored)) {
      Rename(aside, target, error);
      if (error) kept += (kept.empty() ? "" : ", ") + aside.string();
    } else if (i + 1 < count) {
      fs::remove(target, ignored);
    }
  }
  return kept;
}

void StagedOutput::Commit() {
  CheckInterrupts();
  for (size_t i = 0; i < names_.size(); ++i) {
    try {
      Replace(names_[i]);
    } catch (const DataError& error) {
      const std::string kept = Restore(i + 1);
      if (kept.empty()) throw;
      stage_.clear();  // keeps the folder
      throw DataError(std::string(error.what()) + "; old files that could not be put back: " + kept);
    }
  }
  made_.clear();
  Discard();
}

}  // namespace itoftool
