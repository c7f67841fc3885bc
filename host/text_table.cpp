#include "host/text_table.h"

#include <algorithm>

namespace tervan::host {
namespace {

constexpr size_t kGap = 2;

std::vector<size_t> Widths(const TextRows& rows) {
  std::vector<size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  return widths;
}

std::string Blanks(size_t width, const std::string& text) {
  return std::string(std::max(width, text.size()) - text.size(), ' ');
}

}  // namespace

std::string TextTable(const TextRows& rows) {
  const std::vector<size_t> widths = Widths(rows);
  std::string text;
  for (const auto& row : rows) {
    for (size_t i = 0; i + 1 < row.size(); ++i) text += row[i] + Blanks(widths[i] + kGap, row[i]);
    text += row.back() + '\n';
  }
  return text;
}

std::string NumberTable(const TextRows& rows) {
  const std::vector<size_t> widths = Widths(rows);
  std::string text;
  for (const auto& row : rows) {
    text += row[0] + Blanks(widths[0], row[0]);
    for (size_t i = 1; i < row.size(); ++i) text += Blanks(widths[i] + kGap, row[i]) + row[i];
    text += '\n';
  }
  return text;
}

}  // namespace tervan::host
