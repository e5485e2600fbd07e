#pragma once

// libcurl's process-wide set-up, done once whichever thread asks first.
// Gives 1 when libcurl is ready.
int OrvCurlGlobalInit();
