#pragma once

#include <chrono>
#include <cstdint>
#include <string>

// One status line on a terminal, redrawn in place: requests made, bytes read,
// what the run is doing and the URL in hand. Redraws at most ten times a second so a fast crawl is
// not slowed down by its own display.
class ProgressLine {
 public:
  explicit ProgressLine(int out);
  ~ProgressLine();

  void Show(long requests, int64_t bytes, const std::string& url, const std::string& phase = "");
  // Draws the latest figures even if the last redraw was just now.
  void Flush();
  // Removes the line, leaving the cursor at the start of an empty line.
  void Clear();

 private:
  void Draw();

  int fd;
  bool drawn = false;
  long requests = 0;
  int64_t bytes = 0;
  std::string url;
  std::string phase;
  std::chrono::steady_clock::time_point lastDraw{};
};

// "1.2 MB", "512 B": short enough for a status line.
std::string ShortByteCount(int64_t bytes);
