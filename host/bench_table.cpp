#include "host/bench_table.h"

#include "host/text.h"
#include "host/text_table.h"

namespace tervan::host {

void AddBlockColumns(BenchTable& table, const std::string& unit, const std::string& key, int decimals) {
  for (const size_t frames : kBlockFrames) {
    const std::string number = std::to_string(frames);
    table.columns.push_back({unit + " @" + number, key + '_' + number, decimals});
  }
}

std::string TableText(const BenchTable& table) {
  TextRows rows{{std::string()}};
  for (const BenchColumn& column : table.columns) rows[0].push_back(column.heading);
  for (const BenchRow& row : table.rows) {
    auto& cells = rows.emplace_back(std::vector{row.bench_case.Label()});
    for (size_t i = 0; i < row.figures.size(); ++i) {
      cells.push_back(FixedNumber(row.figures[i], table.columns[i].decimals));
    }
  }
  return std::string(table.title) + '\n' + NumberTable(rows);
}

void AddTable(JsonWriter& json, const BenchTable& table) {
  json.Key(table.key).BeginArray();
  for (const BenchRow& row : table.rows) {
    json.BeginObject();
    json.Key("effect").Text(row.bench_case.effect).Key("variant").Text(row.bench_case.variant);
    for (size_t i = 0; i < row.figures.size(); ++i) json.Key(table.columns[i].key).Number(row.figures[i]);
    json.EndObject();
  }
  json.EndArray();
}

}  // namespace tervan::host
