// File access of the tool. Errors carry the file's name and the system's cause; outputs are all or nothing.
#include "files/files.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "support/errors.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

constexpr size_t kLargestFile = size_t{256} << 20;

/// Writes to `path`; errors carry the name under which the user will know the file.
void WriteBytes(const fs::path& path, const fs::path& knownAs, std::span<const uint8_t> bytes) {
  File file(std::fopen(path.c_str(), "wb"));
  if (!file) Fail(knownAs, std::strerror(errno));
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  if (!written || std::fflush(file.get()) != 0) Fail(knownAs, std::strerror(errno));
  if (std::fclose(file.release()) != 0) Fail(knownAs, std::strerror(errno));
}

/// Without the trailing slashes and ".." that would count as folders to be made.
fs::path Canonical(const fs::path& directory) {
  std::error_code error;
  const fs::path canonical = fs::weakly_canonical(directory.empty() ? "." : directory, error);
  return error ? directory : canonical;
}

/// The folders that are missing on the way to `directory`, the innermost first.
std::vector<fs::path> MissingFolders(const fs::path& directory) {
  std::error_code error;
  std::vector<fs::path> missing;
  for (fs::path path = directory; !path.empty() && !fs::exists(path, error); path = path.parent_path()) {
    missing.push_back(path);
  }
  return missing;
}

volatile std::sig_atomic_t interrupted = 0;

/// From the first call on, an interrupt does not end the process, but lets the next step of an output fail, so that
/// what is half done is cleared away.
void CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { interrupted = 1; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // the second one does end it
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);  // else the parent wants it so
  }
}

void CheckInterrupts() {
  if (interrupted != 0) throw DataError("interrupted; nothing is written");
}

void RemoveFolders(const std::vector<fs::path>& folders) {
  std::error_code ignored;
  // Empty ones only: another process may have written into them since.
  for (const fs::path& folder : folders) fs::remove(folder, ignored);
}

}  // namespace

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
  std::string cause;
  if (error) {
    cause = error.message();
  } else if (mkdtemp(stage.data()) == nullptr) {
    cause = std::strerror(errno);
  }
  if (!cause.empty()) {
    RemoveFolders(made_);
    Fail(directory_, cause);
  }
  stage_ = stage;
}

StagedOutput::~StagedOutput() {
  std::error_code ignored;
  fs::remove_all(stage_, ignored);
  RemoveFolders(made_);
}

void StagedOutput::Write(const std::string& name, std::span<const uint8_t> bytes) {
  CheckInterrupts();
  std::error_code error;
  if (fs::is_directory(directory_ / name, error)) Fail(directory_ / name, "is a directory");
  WriteBytes(stage_ / name, directory_ / name, bytes);
  names_.push_back(name);
}

void StagedOutput::Commit() {
  CheckInterrupts();
  // The files that are replaced wait in the stage, so that a failure half way can bring them back.
  const fs::path replaced = stage_ / "replaced";
  std::error_code error;
  fs::create_directory(replaced, error);
  if (error) Fail(directory_, error.message());
  for (size_t i = 0; i < names_.size(); ++i) {
    const fs::path target = directory_ / names_[i];
    fs::rename(target, replaced / names_[i], error);
    if (!error || error == std::errc::no_such_file_or_directory) {
      fs::rename(stage_ / names_[i], target, error);
    }
    if (!error) continue;
    for (size_t j = 0; j <= i; ++j) {
      std::error_code ignored;
      if (j < i) fs::remove(directory_ / names_[j], ignored);
      fs::rename(replaced / names_[j], directory_ / names_[j], ignored);
    }
    Fail(target, error.message());
  }
  made_.clear();
  names_.clear();
  fs::remove_all(stage_, error);
}

}  // namespace itoftool
