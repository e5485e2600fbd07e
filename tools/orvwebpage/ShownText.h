#pragma once

#include <string>
#include <string_view>

// Text that came from a page, a server or an argument, as readable output may
// show it: control bytes (C0 but tab, DEL, and C1 in their UTF-8 form) become
// escapes such as \n, \r, \x1b or \u009b, so that nothing shown can move the
// cursor, recolour the terminal or forge a line of its own. Other bytes stay.
std::string ShownText(std::string_view text);
