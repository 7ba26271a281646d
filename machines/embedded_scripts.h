#ifndef KVL_MACHINES_EMBEDDED_SCRIPTS_H
#define KVL_MACHINES_EMBEDDED_SCRIPTS_H

namespace kvl::machines {

/// The script that stands in for every recorded command (machines/stand-in).
extern const char* const kStandInScript;

/// The script that lays a recording down onto a private root (machines/lay-down).
extern const char* const kLayDownScript;

/// The simulated adapter tool (machines/hbacmd).
extern const char* const kAdapterToolScript;

/// The simulated dracut (machines/dracut).
extern const char* const kDracutScript;

}  // namespace kvl::machines

#endif
