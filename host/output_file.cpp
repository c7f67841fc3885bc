#include "host/output_file.h"

#include <set>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

// Beside its place, so that moving it there is a renaming; one for every process. A process that was killed leaves it
// behind, and the next one with its number takes it over.
std::string TemporaryPath(const std::string& path) { return path + ".part" + std::to_string(GetCurrentProcessId()); }

FileHandle CreateTemporary(const std::string& path, bool may_replace) {
  CheckReplaceable(path, may_replace);
  return FileHandle::Create(TemporaryPath(path), path);
}

}  // namespace

void CheckReplaceable(const std::string& path, bool may_replace) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return;
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) throw Failure("cannot write " + Quoted(path) + ": it is a folder");
  if (!may_replace) throw Failure(Quoted(path) + " exists already; --force replaces it");
}

void CheckOutputPaths(std::span<const std::string> outputs, std::span<const std::string> inputs) {
  std::set<std::string> written;
  for (const std::string& output : outputs) {
    if (!written.insert(ComparablePath(output)).second) throw UsageError(Quoted(output) + " would be written twice");
    for (const std::string& input : inputs) {
      if (ComparablePath(output) == ComparablePath(input) || IsSameFile(output, input)) {
        throw UsageError("the output " + Quoted(output) + " is an input as well");
      }
    }
  }
}

void WriteWholeFile(const std::string& path, std::span<const std::uint8_t> content, bool may_replace) {
  OutputFile file(path, may_replace);
  file.File().Write(content.data(), content.size());
  file.Commit();
}

OutputFile::OutputFile(const std::string& path, bool may_replace)
    : path_(path), may_replace_(may_replace), file_(CreateTemporary(path, may_replace)) {}

OutputFile::~OutputFile() {
  file_.Close();
  if (!is_committed_) DeleteFileW(Wide(TemporaryPath(path_)).c_str());
}

void OutputFile::Commit() {
  file_.Close();
  if (!MoveFileExW(Wide(TemporaryPath(path_)).c_str(), Wide(path_).c_str(),
                   may_replace_ ? MOVEFILE_REPLACE_EXISTING : 0)) {
    throw Failure("cannot write " + Quoted(path_) + ": " + SystemMessage(GetLastError()));
  }
  is_committed_ = true;
}

}  // namespace tervan::host
