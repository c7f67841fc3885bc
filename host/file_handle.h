// Files of any size through the platform's handles. Every function that fails throws a Failure naming the file.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tervan::host {

class FileHandle {
 public:
  FileHandle() = default;
  static FileHandle OpenForReading(const std::string& path);
  // Empties a file that exists. Messages call it by the second name.
  static FileHandle Create(const std::string& path, const std::string& shown_path);

  ~FileHandle() { Close(); }
  FileHandle(FileHandle&& other) noexcept : handle_(other.handle_), path_(std::move(other.path_)) {
    other.handle_ = INVALID_HANDLE_VALUE;
  }
  FileHandle& operator=(FileHandle&&) = delete;

  void Close() noexcept;
  HANDLE Get() const { return handle_; }
  const std::string& Path() const { return path_; }  // as messages call it

  std::uint64_t Size() const;
  void Seek(std::uint64_t position);
  // Fewer bytes than asked for only at the end of the file.
  size_t Read(void* data, size_t bytes);
  void Write(const void* data, size_t bytes);

 private:
  FileHandle(HANDLE handle, const std::string& path) : handle_(handle), path_(path) {}

  HANDLE handle_ = INVALID_HANDLE_VALUE;
  std::string path_;
};

std::vector<std::uint8_t> ReadWholeFile(const std::string& path);

bool FileExists(const std::string& path);
// Whether both name one file; false when either does not exist.
bool IsSameFile(const std::string& a, const std::string& b);
// Absolute and in lower case: two paths that give the same text would overwrite each other.
std::string ComparablePath(const std::string& path);
// The name without folder and extension.
std::string FileStem(const std::string& path);

}  // namespace tervan::host
