/**
 * @file orvcore.h
 * The core library, liborvcore.so.6.1: the allocator that liborvsrmx.so.6.1 uses.
 *
 * A program that defines both functions itself takes their place for the whole process; that is how a host
 * counts, bounds or fails the library's allocations.
 */
#ifndef ORVCORE_H
#define ORVCORE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Allocates a block.
 *
 * @param bytes  size of the block; any value, 0 included
 * @return the block, aligned to 64 bytes, to be released with orvFree(); null if it cannot be had. It never
 *         aborts.
 */
__attribute__((visibility("default"))) void *orvMalloc(size_t bytes);

/**
 * Releases a block.
 *
 * @param block  a pointer that orvMalloc() returned, or null
 */
__attribute__((visibility("default"))) void orvFree(void *block);

#ifdef __cplusplus
}
#endif
#endif
