// Reads and writes files through the C library, whose errno names the cause of a failure.
#include "files/files.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>
#include <unordered_set>

#include "support/errors.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

constexpr size_t kLargestFile = size_t{256} << 20;

// Folders inside the temporary folder of a StagedOutput: for its files, and for the files that they replace.
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

/// Returns the folders that have to be made for `directory` to exist, the innermost first.
std::vector<fs::path> MissingFolders(const fs::path& directory) {
  std::error_code error;
  std::vector<fs::path> missing;
  for (fs::path path = directory; !path.empty() && !fs::exists(path, error); path = path.parent_path()) {
    missing.push_back(path);
  }
  return missing;
}

volatile std::sig_atomic_t interrupted = 0;

/// After this call, a first interrupt does not end the process. It makes the next step of an output fail, and the
/// output is removed. A second interrupt ends the process.
void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { interrupted = 1; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    // A signal that is already ignored, e.g. under nohup, stays ignored.
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

void CheckInterrupts() {
  if (interrupted != 0) throw DataError("interrupted; nothing was written");
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

StagedOutput::StagedOutput(const fs::path& directory)
    : directory_(Canonical(directory)), made_(MissingFolders(directory_)) {
  CatchInterrupts();
  std::error_code error;
  fs::create_directories(directory_, error);
  std::string stage = (directory_ / ".itof-partial-XXXXXX").string();
  if (!error && mkdtemp(stage.data()) == nullptr) error.assign(errno, std::generic_category());
  if (!error) {
    stage_ = stage;
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
  fs::remove_all(stage_, ignored);
  // This removes empty folders only. Another process may have written into them.
  for (const fs::path& folder : made_) fs::remove(folder, ignored);
}

void StagedOutput::Write(const std::string& name, std::span<const uint8_t> bytes) {
  CheckInterrupts();
  std::error_code error;
  if (fs::is_directory(directory_ / name, error)) Fail(directory_ / name, "is a directory");
  WriteBytes(stage_ / kNew / name, directory_ / name, bytes);
  names_.push_back(name);
}

void StagedOutput::Commit() {
  CheckInterrupts();
  std::error_code error, ignored;
  for (size_t i = 0; i < names_.size(); ++i) {
    const fs::path target = directory_ / names_[i];
    if (fs::is_directory(target, error)) {
      error = std::make_error_code(std::errc::is_a_directory);
    } else {
      fs::rename(target, stage_ / kOld / names_[i], error);
    }
    if (!error || error == std::errc::no_such_file_or_directory) {
      fs::rename(stage_ / kNew / names_[i], target, error);
    }
    if (!error) continue;
    for (size_t j = 0; j <= i; ++j) {
      if (j < i) fs::remove(directory_ / names_[j], ignored);
      fs::rename(stage_ / kOld / names_[j], directory_ / names_[j], ignored);
    }
    Fail(target, error.message());
  }
  made_.clear();
  names_.clear();
  fs::remove_all(stage_, ignored);
}

}  // namespace itoftool
