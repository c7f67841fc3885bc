// Figures of the benchmark, one row a case, for people and for programs.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/bench_cases.h"
#include "host/json_writer.h"

namespace tervan::host {

struct BenchColumn {
  std::string heading;
  std::string key;  // in JSON
  int decimals;
};

struct BenchRow {
  BenchCase bench_case;
  std::vector<double> figures;  // one a column
};

struct BenchTable {
  std::string_view key;    // in JSON
  std::string_view title;  // says what the figures are
  std::vector<BenchColumn> columns;
  std::vector<BenchRow> rows;
};

// One column for every length of kBlockFrames: "64", "ns_per_frame_64".
void AddBlockColumns(BenchTable& table, const std::string& unit, const std::string& key, int decimals);

std::string TableText(const BenchTable& table);
void AddTable(JsonWriter& json, const BenchTable& table);

}  // namespace tervan::host
