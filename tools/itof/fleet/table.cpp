// Makes the table of a check of several files.
#include "fleet/table.h"

#include <algorithm>

#include "support/text.h"

namespace itoftool {
namespace {

/// The field of a CSV file. Only these characters need quotes.
std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted(1, '"');
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  quoted.push_back('"');
  return quoted;
}

}  // namespace

std::vector<UnitRow> MakeRows(std::span<const CheckedUnit> units, const std::optional<Fleet>& fleet) {
  std::vector<UnitRow> rows;
  for (const CheckedUnit& unit : units) {
    const auto count = [&](Severity severity) {
      return static_cast<size_t>(std::ranges::count(unit.findings, severity, &Finding::severity));
    };
    rows.push_back({.path = unit.path,
                    .errors = count(Severity::kError),
                    .warnings = count(Severity::kWarning),
                    .notes = count(Severity::kNote),
                    .worst = {},
                    .worstSeverity = {},
                    .reason = {},
                    .effectPixels = LargestEffect(unit.findings),
                    .fleetPixels = {}});
    const Finding* worst = WorstFinding(unit.findings);
    if (worst == nullptr) continue;
    rows.back().worst = worst->name;
    rows.back().worstSeverity = SeverityName(worst->severity);
    if (worst->name == kUnreadable) rows.back().reason = worst->text;
  }
  if (!fleet) return rows;
  for (size_t i = 0; i < fleet->compared.size(); ++i) {
    for (const Spread& move : fleet->moves[i]) {
      std::optional<double>& farthest = rows[fleet->compared[i]].fleetPixels;
      if (move.count > 0) farthest = std::max(farthest.value_or(0), move.maximum);
    }
  }
  return rows;
}

std::string TableText(std::span<const UnitRow> rows) {
  size_t width = 4;
  for (const UnitRow& row : rows) width = std::max(width, row.path.size());  // OneLine keeps it
  const int column = static_cast<int>(width);
  const auto pixels = [](const std::optional<double>& value) { return value ? Format("%.1f", *value) : "-"; };
  std::string text = Format("%-*s  errors  warnings  notes  effect px  fleet px  worst finding\n", column, "file");
  for (const UnitRow& row : rows) {
    std::string worst = row.worst.empty() ? "-" : row.worst;
    if (!row.reason.empty()) worst.append(": ").append(OneLine(row.reason));
    text +=
        Format("%-*s  %6zu  %8zu  %5zu  %9s  %8s  %s\n", column, OneLine(row.path).c_str(), row.errors, row.warnings,
               row.notes, pixels(row.effectPixels).c_str(), pixels(row.fleetPixels).c_str(), worst.c_str());
  }
  return text;
}

std::string TableCsv(std::span<const UnitRow> rows) {
  const auto pixels = [](const std::optional<double>& value) { return value ? Format("%.3f", *value) : ""; };
  std::string text = "file,errors,warnings,notes,worst,worst_severity,effect_pixels,fleet_pixels,reason\n";
  for (const UnitRow& row : rows) {
    text += CsvField(row.path) + Format(",%zu,%zu,%zu,%s,%s,%s,%s,%s\n", row.errors, row.warnings, row.notes,
                                        row.worst.c_str(), row.worstSeverity.c_str(), pixels(row.effectPixels).c_str(),
                                        pixels(row.fleetPixels).c_str(), CsvField(row.reason).c_str());
  }
  return text;
}

}  // namespace itoftool
