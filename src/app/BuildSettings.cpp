#include "app/BuildSettings.h"

#ifndef MOSSWICK_UPDATE_TEST_AUTHORITIES
#define MOSSWICK_UPDATE_TEST_AUTHORITIES ""
#endif

namespace mosswick::BuildSettings {

const char* version() { return MOSSWICK_VERSION; }
const char* updateFeed() { return MOSSWICK_UPDATE_FEED; }
const char* updatePublicKey() { return MOSSWICK_UPDATE_PUBLIC_KEY; }
const char* extraUpdateAuthorities() { return MOSSWICK_UPDATE_TEST_AUTHORITIES; }

}  // namespace mosswick::BuildSettings
