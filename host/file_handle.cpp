#include "host/file_handle.h"

#include <algorithm>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

// One call moves at most this much.
constexpr size_t kMaxTransferBytes = size_t{1} << 30;

[[noreturn]] void Fail(const char* action, const std::string& path, DWORD error = GetLastError()) {
  throw Failure("cannot " + std::string(action) + ' ' + Quoted(path) + ": " + SystemMessage(error));
}

HANDLE OpenToLookAt(const std::string& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return CreateFileW(Wide(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

bool FileInformation(const std::string& path, BY_HANDLE_FILE_INFORMATION* information) {
  const HANDLE file = OpenToLookAt(path);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool is_known = GetFileInformationByHandle(file, information) != FALSE;
  CloseHandle(file);
  return is_known;
}

}  // namespace

FileHandle FileHandle::OpenForReading(const std::string& path) {
  const HANDLE handle = CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (handle == INVALID_HANDLE_VALUE) Fail("read", path);
  return {handle, path};
}

FileHandle FileHandle::Create(const std::string& path, const std::string& shown_path) {
  const HANDLE handle =
      CreateFileW(Wide(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) Fail("write", shown_path);
  return {handle, shown_path};
}

void FileHandle::Close() noexcept {
  if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  handle_ = INVALID_HANDLE_VALUE;
}

std::uint64_t FileHandle::Size() const {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(handle_, &size)) Fail("read", path_);
  return size.QuadPart;
}

void FileHandle::Seek(std::uint64_t position) {
  LARGE_INTEGER distance;
  distance.QuadPart = static_cast<LONGLONG>(position);
  if (!SetFilePointerEx(handle_, distance, nullptr, FILE_BEGIN)) Fail("seek in", path_);
}

size_t FileHandle::Read(void* data, size_t bytes) {
  size_t total = 0;
  while (total < bytes) {
    DWORD read = 0;
    const DWORD wanted = static_cast<DWORD>(std::min(bytes - total, kMaxTransferBytes));
    if (!ReadFile(handle_, static_cast<char*>(data) + total, wanted, &read, nullptr)) Fail("read", path_);
    if (read == 0) break;
    total += read;
  }
  return total;
}

void FileHandle::Write(const void* data, size_t bytes) {
  for (size_t total = 0; total < bytes;) {
    DWORD written = 0;
    const DWORD wanted = static_cast<DWORD>(std::min(bytes - total, kMaxTransferBytes));
    if (!WriteFile(handle_, static_cast<const char*>(data) + total, wanted, &written, nullptr)) Fail("write", path_);
    if (written == 0) Fail("write", path_, ERROR_DISK_FULL);
    total += written;
  }
}

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
  FileHandle file = FileHandle::OpenForReading(path);
  std::vector<std::uint8_t> content(static_cast<size_t>(file.Size()));
  content.resize(file.Read(content.data(), content.size()));
  return content;
}

bool FileExists(const std::string& path) { return GetFileAttributesW(Wide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

bool IsSameFile(const std::string& a, const std::string& b) {
  BY_HANDLE_FILE_INFORMATION first, second;
  return FileInformation(a, &first) && FileInformation(b, &second) &&
         first.dwVolumeSerialNumber == second.dwVolumeSerialNumber && first.nFileIndexHigh == second.nFileIndexHigh &&
         first.nFileIndexLow == second.nFileIndexLow;
}

std::string ComparablePath(const std::string& path) {
  std::wstring full(GetFullPathNameW(Wide(path).c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(GetFullPathNameW(Wide(path).c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  CharLowerBuffW(full.data(), static_cast<DWORD>(full.size()));
  return Narrow(full);
}

std::string FileStem(const std::string& path) {
  const size_t folder = path.find_last_of("/\\:");
  const std::string name = folder == std::string::npos ? path : path.substr(folder + 1);
  const size_t extension = name.rfind('.');
  return extension == std::string::npos || extension == 0 ? name : name.substr(0, extension);
}

}  // namespace tervan::host
