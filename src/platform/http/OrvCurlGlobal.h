#pragma once

// libcurl's process-wide set-up, done once whichever thread asks first.
// Whether libcurl is ready.
[[nodiscard]] bool OrvCurlGlobalInit();
