/* A host in C: the version, the allocator, and a log-addition. */
#include <orvcore.h>
#include <orvsr/orvsr.h>
#include <string.h>

int main(void) {
  const float a = 3.0F;
  float *sum = orvMalloc(sizeof *sum);
  int right;
  if (sum == NULL || strcmp(orvsrGetLibVersion()->name, "liborvsrmx.so.6.1") != 0) return 1;
  *sum = a;
  right = orvsLogAdd_32f(&a, sum, 1, orvAlgHintNone) == orvStsNoErr && *sum > 3.693F && *sum < 3.694F;
  orvFree(sum);
  return right ? 0 : 1;
}
