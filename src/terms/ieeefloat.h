// Software IEEE 754 binary floating point over any format: an exponent
// field of exp_w bits and a stored significand of mant_w bits (the hidden
// bit not counted), so a value takes exp_w + mant_w + 1 bits. Single
// precision is the format (8, 23), double precision (11, 52).
//
// What the term store needs of it: rounding an exact rational to the
// nearest float of a format under the four rounding modes, correctly
// rounded, and the bit pattern of the result; plus the special values.
// Results round exactly as IEEE 754 prescribes, including subnormals and
// overflow to infinity or to the largest finite value.
#ifndef ZENLO_TERMS_IEEEFLOAT_H
#define ZENLO_TERMS_IEEEFLOAT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/exception.h"
#include "terms/numbers.h"

namespace zenlo {

enum class RoundingMode {
  NearestEven = 0,
  Zero = 1,
  PlusInf = 2,
  MinusInf = 3
};

class IEEEFloat {
 public:
  ZENLO_DECLARE_ERROR;

  struct Format {
    size_t exp_w;
    size_t mant_w;

    size_t width() const { return exp_w + mant_w + 1; }

    bool operator==(const Format& o) const {
      return exp_w == o.exp_w && mant_w == o.mant_w;
    }
  };

  // Exponent widths above this do not fit the biased exponent in a
  // machine word.
  static constexpr size_t kMaxExpWidth = 62;

  // The float of `format` nearest to `value` under `mode`.
  // Requires: 1 <= exp_w <= kMaxExpWidth, mant_w >= 1; throws error
  //   otherwise. Zero rounds to +0.
  IEEEFloat(Format format, const QNumber& value, RoundingMode mode);

  // Requires: 0 <= bits < 2^width.
  static IEEEFloat from_bits(Format format, const QNumber& bits);
  static IEEEFloat plus_inf(Format format);
  static IEEEFloat minus_inf(Format format);
  // The quiet NaN with only the top significand bit set, sign positive.
  static IEEEFloat nan(Format format);
  static IEEEFloat zero(Format format, bool negative);

  const Format& format() const { return d_format; }

  // Returns: the bit pattern, sign bit highest, as a non-negative integer.
  QNumber get_bits() const;

  bool is_nan() const;
  bool is_inf() const;
  bool is_zero() const;
  bool is_subnormal() const;
  bool is_normal() const;

  bool is_negative() const { return d_sign; }

  // Returns: the exact value. Requires: a finite float.
  QNumber to_rational() const;

 private:
  IEEEFloat(Format format, bool sign, uint64_t exp, const QNumber& frac)
      : d_format(format), d_sign(sign), d_exp(exp), d_frac(frac) {}

  static void check_format(Format format);
  void set_overflow(RoundingMode mode);
  uint64_t max_exp_field() const;

  Format d_format;
  bool d_sign = false;
  uint64_t d_exp = 0;  // the biased exponent field
  QNumber d_frac;      // the stored significand field
};

}  // namespace zenlo

#endif
