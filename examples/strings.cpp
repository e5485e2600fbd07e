#include <cstdio>

#include "orvwebpage/OrvWebPage.h"

int main() {
  OrvString s(" a%41b ", -1);
  s.TrimBanks();     // blanks: space, tab, LF, CR, FF, VT
  s.ChangeToChar();  // %XX becomes that byte: "aAb"; a malformed % stays
  s.Format("%s;%d", s.buf, 7);
  OrvStrArray pairs;
  pairs.Split("a=1&&b=2", '&');        // 3 pieces, the middle one empty; "" gives none
  long n = OrvAtoInt(" -1,234 ", -1);  // -1234: commas between digits skipped, saturating
  std::printf("%s %d %ld\n", s.buf, pairs.count, n);  // aAb;7 3 -1234
  return 0;
}
