// To be loaded before Wine: what the sample machine is, whatever the judge's own is. The computer has 1 GiB of memory,
// and for programs with KITWRIGHT_NOW in their environment (seconds since 1970) the clock stands at that moment; waiting
// goes by another clock.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdlib.h>
#include <sys/sysinfo.h>
#include <sys/time.h>
#include <time.h>

int sysinfo(struct sysinfo* info) {
  int (*system_call)(struct sysinfo*) = (int (*)(struct sysinfo*))dlsym(RTLD_NEXT, "sysinfo");
  const int status = system_call(info);
  if (status == 0) {
    info->totalram = 1ul << 30;
    info->mem_unit = 1;
  }
  return status;
}

static time_t moment(void) {
  const char* now = getenv("KITWRIGHT_NOW");
  return now ? (time_t)atoll(now) : 0;
}

int clock_gettime(clockid_t clock, struct timespec* time) {
  static int (*system_call)(clockid_t, struct timespec*);
  if (!system_call) system_call = (int (*)(clockid_t, struct timespec*))dlsym(RTLD_NEXT, "clock_gettime");
  const time_t now = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE ? moment() : 0;
  if (now == 0) return system_call(clock, time);
  *time = (struct timespec){now, 0};
  return 0;
}

int gettimeofday(struct timeval* restrict time, void* restrict zone) {
  (void)zone;
  struct timespec now;
  const int status = clock_gettime(CLOCK_REALTIME, &now);
  if (status == 0) *time = (struct timeval){now.tv_sec, now.tv_nsec / 1000};
  return status;
}

time_t time(time_t* kept) {
  struct timespec now;
  const time_t seconds = clock_gettime(CLOCK_REALTIME, &now) == 0 ? now.tv_sec : (time_t)-1;
  if (kept) *kept = seconds;
  return seconds;
}
