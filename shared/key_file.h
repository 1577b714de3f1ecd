// Names of shared objects become SysV keys through a file under /tmp that only has to exist.
#ifndef SORVANE_SHARED_KEY_FILE_H
#define SORVANE_SHARED_KEY_FILE_H

#include <sys/types.h>

/// The key of the file prefix + name, made if it is not there; -1 when there is none. An existing file is neither
/// opened nor changed and a link is not followed to make one. -1 is everybody's key: never use it.
key_t keyOf(const char *prefix, const char *name, int project);

#endif
