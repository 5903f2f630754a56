// peak-memory MEGABYTES PROGRAM [ARGUMENT...]
//
// Runs a program and tells when it, or one that it waited for, held more memory than so many megabytes at a time.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: peak-memory MEGABYTES PROGRAM [ARGUMENT...]\n", stderr);
    return 2;
  }
  const pid_t child = fork();
  if (child == 0) {
    execvp(argv[2], argv + 2);
    std::perror(argv[2]);
    _exit(127);
  }
  int status = 0;
  rusage used{};
  if (child < 0 || waitpid(child, &status, 0) != child || getrusage(RUSAGE_CHILDREN, &used) != 0) {
    std::perror("peak-memory");
    return 2;
  }
  const long megabytes = used.ru_maxrss / 1024;
  if (megabytes > std::atol(argv[1])) std::printf("%ld MB of memory are more than %s\n", megabytes, argv[1]);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
