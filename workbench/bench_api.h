#ifndef TORVANE_BENCH_API_H
#define TORVANE_BENCH_API_H

/* What bench.dll exports. All texts are UTF-8; an error text stays valid until the next call of any of these functions.
   The functions are not meant to be called by several threads at once. */

#ifndef __cplusplus
#include <wchar.h>
#endif

#ifdef TORVANE_BUILDING_BENCH
#define TORVANE_BENCH_EXPORT __declspec(dllexport)
#else
#define TORVANE_BENCH_EXPORT __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Puts the calling process, and all processes that it starts, on the bench in `folder`. Another bench that is open is
   closed first. Returns null, or what is wrong: then the process is on no bench. */
TORVANE_BENCH_EXPORT const char* BenchOpen(const char* folder);
TORVANE_BENCH_EXPORT const char* BenchOpenW(const wchar_t* folder);

/* Takes the process off its bench; handles opened on it must be closed by then. Does nothing when there is none. */
TORVANE_BENCH_EXPORT void BenchClose(void);

/* Copies the descriptions of one bench into another folder, as `bench.exe --lay-out --fresh` does.
   Returns null, or what is wrong. */
TORVANE_BENCH_EXPORT const char* BenchLayOut(const char* source, const char* target);

/* Makes a drive of the open bench vanish for every process on it, and brings it back.
   Return 1, or 0 when no bench is open or it has no such drive. */
TORVANE_BENCH_EXPORT int BenchUnplug(int drive);
TORVANE_BENCH_EXPORT int BenchPlug(int drive);

/* Puts another drive of equal size, or another medium, in a drive's place and number, at once and for every process;
   the next call puts the first one back. Returns as the above. */
TORVANE_BENCH_EXPORT int BenchSwap(int drive);

#ifdef __cplusplus
}
#endif

#endif
