// To be loaded before Wine: the computer has as much memory as the sample machine, 1 GiB, whatever the judge's own has.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <sys/sysinfo.h>

int sysinfo(struct sysinfo* info) {
  int (*system_call)(struct sysinfo*) = (int (*)(struct sysinfo*))dlsym(RTLD_NEXT, "sysinfo");
  const int status = system_call(info);
  if (status == 0) {
    info->totalram = 1ul << 30;
    info->mem_unit = 1;
  }
  return status;
}
