#include "desktop/file_contents.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "desktop/base/failure.h"

namespace linewatch::desktop {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

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

}  // namespace linewatch::desktop
