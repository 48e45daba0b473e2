#include "hosts/posix/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <random>
#include <system_error>

#include "hosts/posix/file_descriptor.h"

namespace keyvora::posix {
namespace {

namespace fs = std::filesystem;

constexpr mode_t permissionBits = 0777;
constexpr mode_t ownerReadsAndWrites = S_IRUSR | S_IWUSR;
/// Does not wait for the other end of a pipe, and does not make a terminal the controlling one.
constexpr int openQuietly = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

FileDescriptor open(const fs::path& path, int flags, mode_t mode = 0) {
  int number = -1;
  do {
    number = ::open(path.c_str(), flags | openQuietly, mode);
  } while (number < 0 && errno == EINTR);
  return FileDescriptor(number);
}

/// Whether all of it was written.
bool writeAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = ::write(file.number(), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// Writes all bytes and syncs them to the disk; false when either fails. Some file systems report only then
/// that they are full, and a file must be on the disk before it gets its name.
bool writeToDisk(const FileDescriptor& file, std::string_view bytes) {
  return writeAll(file, bytes) && ::fsync(file.number()) == 0;
}

/// Reads to the end of the file; 0, or the number of the error.
int readAll(const FileDescriptor& file, std::size_t expected, std::string& bytes) {
  constexpr std::size_t chunk = 64u << 10;
  std::size_t length = 0;
  bytes.resize(expected + 1);  // one more, so that the end of the file shows without another resize
  for (;;) {
    const auto count = ::read(file.number(), bytes.data() + length, bytes.size() - length);
    if (count < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
    if (length > FileOperations::largestFile) return EFBIG;
    if (length == bytes.size()) bytes.resize(length + chunk);
  }
  bytes.resize(length);
  return 0;
}

platform::FileContents failure(const fs::path& path, const char* verb, const std::string& reason) {
  return {{}, "The file “" + path.filename().string() + "” could not be " + verb + ": " + reason + "."};
}

std::string reasonFor(int error) {
  return std::generic_category().message(error);
}

/// Creates a file with a unique name in the directory of `path`; `name` receives its path.
FileDescriptor createBeside(const fs::path& path, mode_t mode, fs::path& name) {
  std::random_device random;
  constexpr int attempts = 8;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    std::array<char, 32> unique{};
    std::snprintf(unique.data(), unique.size(), ".keyvora-%08x%08x", random(), random());
    name = path.parent_path() / unique.data();
    auto file = open(name, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (file.isOpen() || errno != EEXIST) return file;
  }
  return {};
}

bool replaceFile(const fs::path& path, std::string_view bytes) {
  fs::path temporary;
  auto file = createBeside(path, 0666, temporary);
  if (!file.isOpen()) return false;
  struct stat present {};
  const bool keepsMode = ::lstat(path.c_str(), &present) == 0 && S_ISREG(present.st_mode);
  const auto mode = static_cast<mode_t>((present.st_mode & permissionBits) | ownerReadsAndWrites);
  const bool written = (!keepsMode || ::fchmod(file.number(), mode) == 0) && writeToDisk(file, bytes);
  file.close();
  if (written && ::rename(temporary.c_str(), path.c_str()) == 0) return true;
  ::unlink(temporary.c_str());
  return false;
}

/// Gives the file the name `path`, unless something exists there. `link` refuses an existing name, `rename`
/// would not; on a file system without links (FAT) the check before the rename leaves a gap.
bool placeWhereNothingIs(const fs::path& file, const fs::path& path) {
  if (::link(file.c_str(), path.c_str()) == 0) return true;
  struct stat present {};
  if (errno == EEXIST || ::lstat(path.c_str(), &present) == 0) return false;
  return ::rename(file.c_str(), path.c_str()) == 0;
}

bool copyFile(const fs::path& from, const fs::path& to) {
  const auto source = open(from, O_RDONLY);
  struct stat info {};
  if (!source.isOpen() || ::fstat(source.number(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  std::string bytes;
  if (readAll(source, static_cast<std::size_t>(info.st_size), bytes) != 0) return false;
  fs::path temporary;
  auto target = createBeside(to, (info.st_mode & permissionBits) | ownerReadsAndWrites, temporary);
  if (!target.isOpen()) return false;
  const bool written = writeToDisk(target, bytes);
  target.close();
  const bool copied = written && placeWhereNothingIs(temporary, to);
  ::unlink(temporary.c_str());
  return copied;
}

platform::FileContents readFile(const fs::path& path, const std::function<void(const struct stat&)>& opened) {
  const auto file = open(path, O_RDONLY);
  if (!file.isOpen()) return failure(path, "opened", reasonFor(errno));
  struct stat info {};
  if (::fstat(file.number(), &info) != 0) return failure(path, "opened", reasonFor(errno));
  opened(info);
  if (S_ISDIR(info.st_mode)) return failure(path, "opened", reasonFor(EISDIR));
  if (!S_ISREG(info.st_mode)) return failure(path, "opened", "Not a regular file");
  const auto size = static_cast<std::size_t>(info.st_size);
  if (size > FileOperations::largestFile) return failure(path, "read", reasonFor(EFBIG));
  platform::FileContents contents;
  if (const int error = readAll(file, size, contents.bytes)) return failure(path, "read", reasonFor(error));
  return contents;
}

}  // namespace

bool FileOperations::createDirectories(const fs::path& directory) {
  std::error_code error;
  if (fs::is_directory(directory, error)) return true;
  fs::create_directories(directory, error);
  return fs::is_directory(directory, error);
}

bool FileOperations::exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

bool FileOperations::copy(const fs::path& from, const fs::path& to) {
  try {
    return copyFile(from, to);
  } catch (const std::exception&) {  // out of memory
    return false;
  }
}

platform::FileContents FileOperations::read(const fs::path& path) {
  return readAndNote(path, [](const struct stat&) {});
}

platform::FileContents FileOperations::readAndNote(const fs::path& path,
                                                   const std::function<void(const struct stat&)>& opened) {
  try {
    return readFile(path, opened);
  } catch (const std::bad_alloc&) {
    return failure(path, "read", reasonFor(ENOMEM));
  }
}

bool FileOperations::append(const fs::path& path, std::string_view bytes) {
  const auto file = open(path, O_WRONLY | O_APPEND);
  if (!file.isOpen()) return false;
  struct stat info {};
  if (::fstat(file.number(), &info) != 0 || !S_ISREG(info.st_mode)) return true;
  if (writeAll(file, bytes)) return true;
  // The next record must not follow a partial one.
  [[maybe_unused]] const int result = ::ftruncate(file.number(), info.st_size);
  return true;
}

bool FileOperations::replace(const fs::path& path, std::string_view bytes) {
  try {
    return replaceFile(path, bytes);
  } catch (const std::exception&) {  // out of memory, no source of random numbers
    return false;
  }
}

}  // namespace keyvora::posix
