#include "host/report.h"

#include <cmath>

#include "host/json_writer.h"
#include "host/text.h"

namespace tervan::host {
namespace {

std::string Decibels(double value, std::string_view unit) {
  return (std::isfinite(value) ? FixedNumber(value, 2) : "-inf") + ' ' + std::string(unit);
}

std::string LevelsText(const Levels& levels) {
  return "peak " + Decibels(levels.peak_db, "dBFS") + ", RMS " + Decibels(levels.rms_db, "dBFS");
}

void AddFormat(JsonWriter& json, std::string_view key, const AudioFormat& format) {
  json.Key(key).BeginObject();
  json.Key("encoding").Text(format.IsFloat() ? "float" : "pcm");
  json.Key("bits").Integer(static_cast<long long>(8 * format.SampleBytes()));
  json.Key("channels").Integer(format.channels);
  json.Key("sample_rate_hz").Integer(format.rate_hz);
  json.EndObject();
}

void AddLevels(JsonWriter& json, std::string_view key, const Levels& levels) {
  json.Key(key).BeginObject();
  json.Key("peak_dbfs").Number(levels.peak_db);
  json.Key("rms_dbfs").Number(levels.rms_db);
  json.EndObject();
}

void AddResult(JsonWriter& json, const FileReport& report) {
  AddFormat(json, "input_format", report.input_format);
  AddFormat(json, "output_format", report.output_format);
  json.Key("frames").Integer(static_cast<long long>(report.frames));
  json.Key("duration_s").Number(report.DurationS());
  AddLevels(json, "input_levels", report.input_levels);
  AddLevels(json, "output_levels", report.output_levels);
  json.Key("effects").BeginArray();
  for (const EffectReport& effect : report.effects) {
    json.BeginObject().Key("name").Text(effect.name).Key("largest_reduction_db");
    json.Number(effect.largest_reduction_db).EndObject();
  }
  json.EndArray();
  json.Key("elapsed_s").Number(report.elapsed_s);
  json.Key("times_real_time").Number(report.TimesRealTime());
}

}  // namespace

std::string ReportText(const FileReport& report) {
  const bool is_converted = !(report.input_format == report.output_format);
  std::string text = report.input + " -> " + report.output + '\n';
  text += "  format     " + Describe(report.input_format);
  if (is_converted) text += " -> " + SampleTypeName(report.output_format.type);
  text += "\n  duration   " + FixedNumber(report.DurationS(), 3) + " s\n";
  text += "  in         " + LevelsText(report.input_levels) + '\n';
  text += "  out        " + LevelsText(report.output_levels) + '\n';
  for (const EffectReport& effect : report.effects) {
    if (!effect.largest_reduction_db) continue;
    text += "  reduction  " + Decibels(*effect.largest_reduction_db, "dB") + " at most (" + effect.name + ")\n";
  }
  text += "  speed      " + FixedNumber(report.TimesRealTime(), 0) + " times real time (" +
          FixedNumber(report.elapsed_s, 3) + " s)\n";
  return text;
}

std::string ReportJson(std::span<const FileReport> reports, RenderPath path) {
  JsonWriter json;
  json.BeginObject();
  json.Key("path").Text(path == RenderPath::kGraph ? "graph" : "direct");
  json.Key("files").BeginArray();
  for (const FileReport& report : reports) {
    json.BeginObject();
    json.Key("input").Text(report.input);
    json.Key("output").Text(report.output);
    if (report.error.empty()) {
      AddResult(json, report);
    } else {
      json.Key("error").Text(report.error);
    }
    json.EndObject();
  }
  json.EndArray().EndObject();
  return json.Take();
}

}  // namespace tervan::host
