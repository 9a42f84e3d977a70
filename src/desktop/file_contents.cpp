#include "desktop/file_contents.h"

#include <QFile>
#include <QSaveFile>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "desktop/base/failure.h"

namespace linewatch::desktop {

namespace {

namespace fs = std::filesystem;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Of a name such as /dev/stdout: it stands for what a process has open, even where that is a plain file, and
/// no other file can take the place of that.
bool namesSomethingOpen(const fs::path& file) {
  std::error_code ignored;
  return fs::canonical(file.parent_path(), ignored).string().starts_with("/proc/");
}

/// Where links lead; the last of them where there are too many.
fs::path followed(fs::path file) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(file, error) && !namesSomethingOpen(file); ++links)
    file = file.parent_path() / fs::read_symlink(file, error);
  return file;
}

bool isReplaceable(const fs::path& file) {
  std::error_code ignored;
  const fs::file_type type = fs::symlink_status(file, ignored).type();
  return (type == fs::file_type::regular || type == fs::file_type::not_found) && !namesSomethingOpen(file);
}

bool isWritten(QFileDevice& to, std::string_view bytes) {
  const auto size = static_cast<qint64>(bytes.size());
  return to.open(QIODevice::WriteOnly) && to.write(bytes.data(), size) == size && to.flush();
}

/// Qt gives no reason where only a part could be written.
std::string whyNotWritten(const QFileDevice& to) {
  const bool isKnown = to.error() != QFileDevice::NoError && to.error() != QFileDevice::UnspecifiedError;
  return isKnown ? to.errorString().toStdString() : "no room for all of it";
}

}  // namespace

// Not a stream of the standard library: its iterators throw where a file turns out to be a folder.
Outcome<std::string> contentsOf(const std::filesystem::path& file, std::size_t maximumBytes) {
  const auto failed = [&](const std::string& why) { return failure(file.string(), "", why); };
  const std::unique_ptr<std::FILE, FileCloser> open(std::fopen(file.c_str(), "rb"));
  if (!open) return failed(std::generic_category().message(errno));
  std::string contents;
  std::array<char, 65536> chunk;
  while (const std::size_t size = std::fread(chunk.data(), 1, chunk.size(), open.get())) {
    contents.append(chunk.data(), size);
    if (contents.size() > maximumBytes) return failed("it is larger than " + sizeInWords(maximumBytes));
  }
  if (std::ferror(open.get()) != 0) return failed(std::generic_category().message(errno));
  return contents;
}

std::optional<Error> writeWhole(const fs::path& file, std::string_view bytes) {
  const fs::path target = followed(file);
  const QString name = QString::fromStdString(target.string());
  const auto failed = [&](const QFileDevice& to) { return failure(file.string(), "", whyNotWritten(to)); };
  if (isReplaceable(target)) {
    QSaveFile to(name);
    return isWritten(to, bytes) && to.commit() ? std::nullopt : std::optional(failed(to));
  }
  QFile to(name);
  return isWritten(to, bytes) ? std::nullopt : std::optional(failed(to));
}

}  // namespace linewatch::desktop
