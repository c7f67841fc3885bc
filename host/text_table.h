// Tables of text, with columns as wide as their widest cell.
#pragma once

#include <string>
#include <vector>

namespace tervan::host {

using TextRows = std::vector<std::vector<std::string>>;

// All columns begin at their left edge.
std::string TextTable(const TextRows& rows);
// All columns but the first end at their right edge, as numbers do.
std::string NumberTable(const TextRows& rows);

}  // namespace tervan::host
