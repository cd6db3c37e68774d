// Parses JSON with nlohmann's library, YAML with yaml-cpp, and XML, which only OpenCV writes, with OpenCV.
#include "stereo/document.h"

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <limits>
#include <new>
#include <opencv2/core.hpp>
#include <set>
#include <sstream>
#include <utility>

#include "files/files.h"
#include "support/errors.h"
#include "support/silence.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

constexpr size_t kLargestFile = size_t{16} << 20;
constexpr int kDeepest = 100;
constexpr int kMostBrackets = 1000;  // far more than a calibration has, and too few to exhaust the stack

[[noreturn]] void FailDeep(const fs::path& path) {
  Fail(path, "nests deeper than " + std::to_string(kDeepest) + " levels");
}
[[noreturn]] void FailDamaged(const fs::path& path, const std::string& cause) {
  Fail(path, "is damaged, or not YAML, XML or JSON" + (cause.empty() ? "" : "; " + cause));
}

void AddMember(const fs::path& path, Json& object, const std::string& key, Json value) {
  if (object.contains(key)) Fail(path, key + ": appears twice");
  object[key] = std::move(value);
}

/// Refuses deep nesting before a parser, which may be recursive, sees the text.
void RefuseDeepBrackets(const fs::path& path, const std::string& text) {
  int depth = 0;
  bool isQuoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') isQuoted = !isQuoted;
    if (isQuoted && c == '\\') ++i;
    if (isQuoted) continue;
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') depth = std::max(depth - 1, 0);
    if (depth > kDeepest) FailDeep(path);
  }
}

void RefuseDeepTags(const fs::path& path, const std::string& text) {
  int depth = 0;
  for (size_t i = text.find('<'); i != std::string::npos; i = text.find('<', i + 1)) {
    if (text.compare(i, 4, "<!--") == 0) {
      i = std::min(text.find("-->", i), text.size() - 1);
    } else if (text[i + 1] == '/') {
      depth = std::max(depth - 1, 0);
    } else if (text[i + 1] != '?' && text[i + 1] != '!') {
      ++depth;
    }
    if (depth > kDeepest) FailDeep(path);
  }
}

/// Returns the value of a YAML scalar without quotes: a number, a truth value, or text.
Json Scalar(const std::string& text) {
  std::string lower = text;
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  if (lower == "true" || lower == "false") return lower == "true";
  const bool hasPlus = lower.size() > 1 && lower[0] == '+' && lower[1] != '-';
  const std::string digits = lower.substr(hasPlus ? 1 : 0);
  if (digits == ".nan") return std::numeric_limits<double>::quiet_NaN();
  if (digits == ".inf") return std::numeric_limits<double>::infinity();
  if (digits == "-.inf") return -std::numeric_limits<double>::infinity();
  double value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::invalid_argument || end != digits.data() + digits.size()) return text;
  if (error == std::errc::result_out_of_range) value = std::strtod(digits.c_str(), nullptr);  // infinity, or nearly 0
  return value;
}

/// Builds the tree from the parser's events. All documents of a file give one object.
class YamlTree : public YAML::EventHandler {
 public:
  explicit YamlTree(const fs::path& path) : path_(path) {}
  Json root = Json::object();

  void OnDocumentStart(const YAML::Mark& mark) override {
    // In front of a stray comma, the parser finds empty documents without end.
    if (mark.pos == start_) FailDamaged(path_, "line " + std::to_string(mark.line + 1) + ": a stray bracket or comma");
    start_ = mark.pos;
  }
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark& mark, YAML::anchor_t) override { Add(mark, nullptr); }
  void OnAlias(const YAML::Mark& mark, YAML::anchor_t) override {
    // Aliases of aliases grow without limit.
    Fail(path_, "line " + std::to_string(mark.line + 1) + ": contains a YAML alias (*name); write its value instead");
  }
  void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t, const std::string& value) override {
    if (!open_.empty() && open_.back().value.is_object() && !open_.back().hasKey) {
      open_.back().key = value;
      open_.back().hasKey = true;
    } else {
      Add(mark, tag == "?" || tag.empty() ? Scalar(value) : Json(value));
    }
  }
  void OnSequenceStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {
    Open(mark, Json::array());
  }
  void OnSequenceEnd() override { Close(); }
  void OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override {
    Open(mark, Json::object());
  }
  void OnMapEnd() override { Close(); }

 private:
  struct Container {
    Json value;
    std::string key;  // of an object's next member
    bool hasKey;
    YAML::Mark mark;
  };

  void Open(const YAML::Mark& mark, Json value) {
    if (open_.size() >= kDeepest) FailDeep(path_);
    open_.push_back({std::move(value), {}, false, mark});
  }
  void Close() {
    const Container done = std::move(open_.back());
    open_.pop_back();
    Add(done.mark, done.value);
  }
  void Add(const YAML::Mark& mark, Json value) {
    if (open_.empty()) {
      if (value.is_null()) return;
      if (!value.is_object()) Fail(path_, "contains no keys");
      for (auto& [key, member] : value.items()) AddMember(path_, root, key, std::move(member));
      return;
    }
    Container& parent = open_.back();
    if (parent.value.is_array()) {
      parent.value.push_back(std::move(value));
      return;
    }
    if (!parent.hasKey) FailDamaged(path_, "line " + std::to_string(mark.line + 1) + ": a key that is not text");
    AddMember(path_, parent.value, parent.key, std::move(value));
    parent.hasKey = false;
  }

  const fs::path& path_;
  std::vector<Container> open_;
  int start_ = -1;  // of the document
};

Json ParseYaml(const fs::path& path, std::string text) {
  // OpenCV writes %YAML:1.0, which is not YAML. The line stays, for the line numbers of messages.
  if (text.starts_with("%YAML")) text.erase(0, text.find_first_of("\r\n"));
  std::istringstream stream(text);
  YamlTree tree(path);
  try {
    YAML::Parser parser(stream);
    while (parser.HandleNextDocument(tree)) {
    }
  } catch (const YAML::Exception& error) {
    FailDamaged(path, "line " + std::to_string(error.mark.line + 1) + ": " + error.msg);
  }
  return tree.root;
}

/// Returns null if the text is not JSON.
Json ParseJson(const fs::path& path, const std::string& text) {
  std::vector<std::set<std::string>> keys;
  const auto refuseRepeatedKeys = [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second) {
      Fail(path, parsed.get<std::string>() + ": appears twice");
    }
    return true;
  };
  try {
    return Json::parse(text, refuseRepeatedKeys, true, true);
  } catch (const Json::exception&) {
    return nullptr;
  }
}

Json TreeOf(const fs::path& path, const cv::FileNode& node, int depth) {
  if (depth > kDeepest) FailDeep(path);
  if (node.isInt()) return static_cast<int>(node);
  if (node.isReal()) return static_cast<double>(node);
  if (node.isString()) return node.string();
  if (node.isSeq()) {
    Json list = Json::array();
    for (const cv::FileNode entry : node) list.push_back(TreeOf(path, entry, depth + 1));
    return list;
  }
  if (!node.isMap()) return nullptr;
  Json object = Json::object();
  for (const cv::FileNode member : node) AddMember(path, object, member.name(), TreeOf(path, member, depth + 1));
  return object;
}

/// Returns line and cause from OpenCV's message, if that has the form "...(7): Missing , between the elements'".
std::string ParserFault(const std::exception& error) {
  const std::string text = error.what();
  const size_t close = text.rfind("): ");
  const size_t open = text.rfind('(', close);
  if (close == std::string::npos || open == std::string::npos) return {};
  const std::string line = text.substr(open + 1, close - open - 1);
  const std::string cause = text.substr(close + 3, text.find_last_not_of("'\n") - close - 2);
  if (line.find_first_not_of("0123456789") != std::string::npos) return {};
  return "line " + line + ": " + cause;
}

Json ParseWithOpenCv(const fs::path& path, const std::string& text) {
  const Silence silence(stderr);
  try {
    const cv::FileStorage storage(text, cv::FileStorage::READ | cv::FileStorage::MEMORY);
    Json root = Json::object();
    for (int i = 0; !storage.root(i).empty(); ++i) {
      const Json part = TreeOf(path, storage.root(i), 0);
      if (!part.is_object()) Fail(path, "contains no keys");
      for (const auto& [key, value] : part.items()) AddMember(path, root, key, value);
    }
    return root;
  } catch (const DataError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {  // from OpenCV, or from the C++ library through its parser
    FailDamaged(path, ParserFault(error));
  }
}

Json Parse(const fs::path& path, const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return nullptr;
  if (text[first] == '<') {
    RefuseDeepTags(path, text);
    return ParseWithOpenCv(path, text);
  }
  RefuseDeepBrackets(path, text);
  // OpenCV can write the entries of a matrix as base64. Its parser is recursive, and quotes in the text could hide
  // nesting from the count above, so all brackets count here.
  if (text.find("$base64$") != std::string::npos) {
    if (std::ranges::count_if(text, [](char c) { return c == '[' || c == '{'; }) > kMostBrackets) FailDeep(path);
    return ParseWithOpenCv(path, text);
  }
  if (text[first] == '{') {
    if (Json root = ParseJson(path, text); !root.is_null()) return root;
  }
  return ParseYaml(path, text);  // also for JSON with numbers such as 512. from older versions of OpenCV
}

}  // namespace

Document ReadDocument(const fs::path& path) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  if (bytes.size() > kLargestFile) Fail(path, "is larger than 16 MiB, too large for a calibration");
  std::string text(bytes.begin(), bytes.end());
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  text.erase(text.find_last_not_of('\0') + 1);  // cameras hand out their JSON as a terminated string
  Document document{path.string(), Parse(path, text)};
  if (!document.root.is_object() || document.root.empty()) Fail(path, "contains no keys");
  return document;
}

const Json* Find(const Json& root, const std::string& key) {
  if (!root.is_object()) return nullptr;
  if (const auto member = root.find(key); member != root.end()) return &*member;
  const size_t dot = key.find('.');
  if (dot == std::string::npos) return nullptr;
  const auto member = root.find(key.substr(0, dot));
  return member == root.end() ? nullptr : Find(*member, key.substr(dot + 1));
}

}  // namespace itoftool
