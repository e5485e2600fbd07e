#include "platform/http/OrvHttpShare.h"

#include "platform/http/OrvCurlGlobal.h"

OrvHttpShare::~OrvHttpShare() {
  // Every easy handle lets go of it after its transfer, so it is free here.
  if (share) curl_share_cleanup(share);
}

CURLSH* OrvHttpShare::Get() {
  std::call_once(made, [this] {
    if (!OrvCurlGlobalInit()) return;
    share = curl_share_init();
    if (!share) return;
    curl_share_setopt(share, CURLSHOPT_LOCKFUNC, Lock);
    curl_share_setopt(share, CURLSHOPT_UNLOCKFUNC, Unlock);
    curl_share_setopt(share, CURLSHOPT_USERDATA, this);
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT);
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
    curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
  });
  return share;
}

void OrvHttpShare::Lock(CURL*, curl_lock_data data, curl_lock_access, void* context) {
  if (data >= 0 && data < CURL_LOCK_DATA_LAST)
    static_cast<OrvHttpShare*>(context)->locks[data].lock();
}

void OrvHttpShare::Unlock(CURL*, curl_lock_data data, void* context) {
  if (data >= 0 && data < CURL_LOCK_DATA_LAST)
    static_cast<OrvHttpShare*>(context)->locks[data].unlock();
}
