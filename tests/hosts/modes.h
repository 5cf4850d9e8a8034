/* The ways in which a host may load the plug-in. */
#ifndef LIGHTMOTION_TESTS_HOSTS_MODES_H
#define LIGHTMOTION_TESTS_HOSTS_MODES_H

#include <dlfcn.h>

struct mode {
  const char* name;
  int flags;
};

static const struct mode modes[] = {
    {"RTLD_NOW | RTLD_LOCAL", RTLD_NOW | RTLD_LOCAL},
    {"RTLD_LAZY | RTLD_LOCAL", RTLD_LAZY | RTLD_LOCAL},
    {"RTLD_NOW | RTLD_GLOBAL", RTLD_NOW | RTLD_GLOBAL},
#ifndef __SANITIZE_ADDRESS__ /* not supported by the address sanitizer */
    {"RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND", RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND},
    {"RTLD_NOW | RTLD_GLOBAL | RTLD_DEEPBIND", RTLD_NOW | RTLD_GLOBAL | RTLD_DEEPBIND},
#endif
};

#endif
