// Internals shared by the GMP paths of QNumber and BVNumber: scoped GMP
// temporaries and a read-only mpq view of a QNumber in either form. Not for
// use outside src/terms.
#ifndef ZENLO_TERMS_NUMBERS_GMP_H
#define ZENLO_TERMS_NUMBERS_GMP_H

#include <gmp.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "terms/numbers.h"

namespace zenlo {
namespace numbers_detail {

inline uint64_t uabs(int64_t x) {
  return x < 0 ? 0 - static_cast<uint64_t>(x) : static_cast<uint64_t>(x);
}

inline QNumber::error from_str_error(const std::string& text) {
  return QNumber::error("invalid argument to Number::from_str: " + text);
}

// Scoped GMP temporaries for the big paths.
struct Mpz {
  mpz_t z;

  Mpz() { mpz_init(z); }

  ~Mpz() { mpz_clear(z); }

  Mpz(const Mpz&) = delete;
  Mpz& operator=(const Mpz&) = delete;

  operator mpz_ptr() { return z; }
};

struct Mpq {
  mpq_t q;

  Mpq() { mpq_init(q); }

  ~Mpq() { mpq_clear(q); }

  Mpq(const Mpq&) = delete;
  Mpq& operator=(const Mpq&) = delete;

  operator mpq_ptr() { return q; }
};

inline std::string mpz_to_string(mpz_srcptr z) {
  std::string s(mpz_sizeinbase(z, 10) + 2, '\0');
  mpz_get_str(&s[0], 10, z);
  s.resize(std::strlen(s.c_str()));
  return s;
}

}  // namespace numbers_detail

// A read-only mpq view of any QNumber. A small number is presented through
// GMP's read-only integers over limbs on the stack, so mixed operations reach
// the mpq functions without allocating a temporary.
class MpqView {
 public:
  explicit MpqView(const QNumber& x) {
    if (x.is_big()) {
      d_ptr = x.big();
      return;
    }
    d_limbs[0] = numbers_detail::uabs(x.d_num);
    d_limbs[1] = static_cast<mp_limb_t>(x.d_den);
    mp_size_t num_size = (x.d_num > 0) - (x.d_num < 0);
    mpz_roinit_n(mpq_numref(d_tmp), &d_limbs[0], num_size);
    mpz_roinit_n(mpq_denref(d_tmp), &d_limbs[1], 1);
    d_ptr = d_tmp;
  }

  MpqView(const MpqView&) = delete;
  MpqView& operator=(const MpqView&) = delete;

  operator mpq_srcptr() const { return d_ptr; }

  mpz_srcptr num() const { return mpq_numref(d_ptr); }

  mpz_srcptr den() const { return mpq_denref(d_ptr); }

 private:
  mp_limb_t d_limbs[2];
  mpq_t d_tmp;
  mpq_srcptr d_ptr;
};

}  // namespace zenlo

#endif
