// A file that appears complete or not at all: it is written under a temporary name beside its place and moved there by
// Commit. Without Commit nothing is left behind, and what stood in its place stays.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/file_handle.h"

namespace tervan::host {

class OutputFile {
 public:
  OutputFile(const std::string& path, bool may_replace);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  FileHandle& File() { return file_; }
  const std::string& Path() const { return path_; }
  void Commit();

 private:
  const std::string path_;
  const bool may_replace_;
  FileHandle file_;
  bool is_committed_ = false;
};

// Throws a Failure.
void WriteWholeFile(const std::string& path, std::span<const std::uint8_t> content, bool may_replace);

// Throws a Failure when something stands at the path that may not be replaced.
void CheckReplaceable(const std::string& path, bool may_replace);
// Throws a UsageError when a file would be written twice, or is an input as well.
void CheckOutputPaths(std::span<const std::string> outputs, std::span<const std::string> inputs);

}  // namespace tervan::host
