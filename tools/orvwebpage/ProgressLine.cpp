#include "ProgressLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "ShownText.h"

namespace {

constexpr auto kRedrawEvery = std::chrono::milliseconds(100);

int TerminalWidth(int fd) {
  winsize size{};
  if (ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 20) return size.ws_col;
  return 80;
}

void WriteAll(int fd, const std::string& text) {
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

}  // namespace

std::string ShortByteCount(int64_t bytes) {
  const char* units[] = {"B", "KB", "MB", "GB", "TB"};
  double value = static_cast<double>(bytes < 0 ? 0 : bytes);
  int unit = 0;
  while (value >= 1000 && unit < 4) {
    value /= 1000;
    ++unit;
  }
  char text[32];
  if (unit == 0)
    std::snprintf(text, sizeof text, "%.0f %s", value, units[unit]);
  else
    std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
  return text;
}

ProgressLine::ProgressLine(int out) : fd(out) {}

ProgressLine::~ProgressLine() { Clear(); }

void ProgressLine::Show(long requestCount, int64_t byteCount, const std::string& current,
                        const std::string& doing) {
  requests = requestCount;
  bytes = byteCount;
  url = current;
  // A new phase is drawn at once: probing often takes only a request or two.
  bool changed = doing != phase;
  phase = doing;
  auto now = std::chrono::steady_clock::now();
  if (drawn && !changed && now - lastDraw < kRedrawEvery) return;
  lastDraw = now;
  Draw();
}

void ProgressLine::Flush() { Draw(); }

void ProgressLine::Clear() {
  if (!drawn) return;
  WriteAll(fd, "\r\033[K");
  drawn = false;
}

void ProgressLine::Draw() {
  std::string line = std::to_string(requests) + (requests == 1 ? " request, " : " requests, ") +
                     ShortByteCount(bytes);
  if (!phase.empty()) line += ", " + phase;
  // The URL is cut to the terminal's width so the line never wraps: a wrapped
  // line could not be redrawn in place.
  size_t room = static_cast<size_t>(TerminalWidth(fd)) - 1;
  if (!url.empty() && line.size() + 2 < room) {
    std::string shown = ShownText(url);
    size_t left = room - line.size() - 2;
    if (shown.size() > left) shown = shown.substr(0, left > 3 ? left - 3 : 0) + "...";
    line += "  " + shown;
  }
  WriteAll(fd, "\r\033[K" + line);
  drawn = true;
}
