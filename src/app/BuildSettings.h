#pragma once

namespace mosswick::BuildSettings {

// What this build of Mosswick was configured with. Only BuildSettings.cpp sees the build's
// definitions, so two builds of the same program (the update test's old and new copies) differ
// in that one file.

// The version, as `mosswick --version` prints it and the updater compares it.
const char* version();
// The update feed's https address; empty: this build has no updater.
const char* updateFeed();
// The Ed25519 public key the feed's archives are signed with (32 bytes, base64); may be empty.
const char* updatePublicKey();
// A PEM file of certificate authorities trusted for the update server besides the system's: set
// only in the update test's own builds (its server's self-signed certificate); empty otherwise.
const char* extraUpdateAuthorities();

}  // namespace mosswick::BuildSettings
