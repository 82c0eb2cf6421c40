#include "terms/hashtable.h"

namespace zenlo {
namespace hsh {

namespace {

// Each about twice the last; the last one caps the table.
const size_t kPrimes[28] = {
    31ul,         73ul,         151ul,       313ul,       643ul,
    1291ul,       2593ul,       5233ul,      10501ul,     21011ul,
    42023ul,      84047ul,      168109ul,    336221ul,    672443ul,
    1344899ul,    2689807ul,    5379629ul,   10759271ul,  21518569ul,
    43037171ul,   86074361ul,   172148729ul, 344297477ul, 688595009ul,
    1377190051ul, 2764405229ul, 4294867387ul};

}  // namespace

size_t next_table_size(size_t buckets) {
  for (size_t p : kPrimes) {
    if (p > buckets) {
      return p;
    }
  }
  return kPrimes[27];
}

}  // namespace hsh
}  // namespace zenlo
