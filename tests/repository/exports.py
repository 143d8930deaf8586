"""The shared library exports the public surface and nothing else. Arguments: nm, the library."""

import re
import subprocess
import sys

PUBLIC = re.compile(
    r"^(TYPE_DISABLE_BACK|VelmoraSDKv3VersionNumber|VelmoraSDKv3VersionString"
    r"|velmora::(Velmora|VelmoraAd|VLAdRequestOptions|VLAdShowOptions|VLConfiguration|VelmoraVAST)::~?\w+(\[abi:cxx11\])?\(.*\)( const)?"
    r"|velmora::VLLog\(.*\))$"
)
EXPECTED = ["TYPE_DISABLE_BACK", "VelmoraSDKv3VersionNumber", "VelmoraSDKv3VersionString", "velmora::VLLog(",
            "velmora::Velmora::initializeWithAppKey(", "velmora::VelmoraAd::isValid() const",
            "velmora::VelmoraVAST::getVastUrlForZone("]

nm, library = sys.argv[1:]
lines = subprocess.run([nm, "-DC", "--defined-only", library], check=True, capture_output=True, text=True).stdout
names = [line.split(maxsplit=2)[2] for line in lines.splitlines()]

faults = [f"exported, but not public: {name}" for name in names if not PUBLIC.match(name) or "::state()" in name]
faults += [f"public, but not exported: {name}" for name in EXPECTED if not any(n.startswith(name) for n in names)]
print("\n".join(faults) or f"{len(names)} symbols, all of them public")
sys.exit(1 if faults else 0)
