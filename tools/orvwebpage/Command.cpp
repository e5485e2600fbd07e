#include "Command.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

void CheckTextSize(size_t size, const std::string& what) {
  if (size > kMaxTextSize)
    throw CommandError(what + " has " + std::to_string(size) + " bytes, more than the " +
                       std::to_string(kMaxTextSize) + " a text may have");
}

std::string ReadInput(const std::string& path, bool json) {
  int fd = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  std::string name = path == "-" ? "stdin" : path;
  if (fd < 0) throw CommandError(name, std::strerror(errno), json);
  struct stat info;
  int error = fstat(fd, &info) != 0 ? errno : S_ISDIR(info.st_mode) ? EISDIR : 0;
  std::string text;
  char chunk[65536];
  while (!error) {
    ssize_t got = read(fd, chunk, sizeof chunk);
    if (got > 0)
      text.append(chunk, size_t(got));
    else if (got == 0)
      break;
    else if (errno != EINTR)
      error = errno;
  }
  if (fd != STDIN_FILENO) close(fd);
  if (error) throw CommandError(name, std::strerror(error), json);
  return text;
}

void ForEachInputLine(const std::string& text, const std::function<void(std::string_view)>& visit) {
  size_t start = 0;
  for (size_t number = 1; start < text.size(); number++) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    CheckTextSize(line.size(), "line " + std::to_string(number));
    if (!line.empty()) visit(line);
  }
}

std::vector<std::string> WithStdinLines(const std::vector<std::string>& args) {
  std::vector<std::string> out;
  for (const auto& arg : args) {
    if (arg != "-") {
      out.push_back(arg);
      continue;
    }
    ForEachInputLine(ReadInput("-"), [&out](std::string_view line) { out.emplace_back(line); });
  }
  return out;
}
