#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "terms/numbers.h"

namespace zenlo {
namespace {

// An mpq_t that cleans up after itself: the reference arithmetic.
struct Ref {
  mpq_t q;

  Ref() { mpq_init(q); }

  explicit Ref(const QNumber& x) : Ref() { x.to_mpq(q); }

  ~Ref() { mpq_clear(q); }

  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
};

// Magnitudes around the word-size boundaries, where the overflow tests live.
class Gen {
 public:
  explicit Gen(uint64_t seed) : d_rng(seed) {}

  uint64_t magnitude() {
    static const int kShifts[] = {0, 1, 31, 32, 33, 61, 62, 63};
    switch (d_rng() % 6) {
      case 0: return d_rng() % 8;
      case 1: return d_rng() % 100000;
      case 2: return d_rng() >> (d_rng() % 64);
      default: {
        uint64_t base = uint64_t(1) << kShifts[d_rng() % 8];
        return base + (d_rng() % 7) - 3;  // may wrap near 2^63 on purpose
      }
    }
  }

  int64_t word() {
    uint64_t m = magnitude();
    if (d_rng() % 8 == 0) {
      return d_rng() % 2 ? INT64_MAX - int64_t(d_rng() % 3)
                         : INT64_MIN + int64_t(d_rng() % 3);
    }
    return d_rng() % 2 ? static_cast<int64_t>(0 - m) : static_cast<int64_t>(m);
  }

  int64_t nonzero() {
    int64_t w;
    do {
      w = word();
    } while (w == 0);
    return w;
  }

  // A number in either form; small values are sometimes forced big so that
  // every operation also meets the mixed pairs.
  QNumber number(bool integer = false) {
    QNumber x = integer || d_rng() % 3 == 0 ? QNumber(word())
                                            : QNumber(word(), nonzero());
    if (d_rng() % 5 == 0) {
      x *= QNumber(nonzero());  // often a genuinely big value
    }
    if (d_rng() % 4 == 0) {
      x.make_big();
    }
    return x;
  }

  bool coin() { return d_rng() % 2 == 0; }

 private:
  std::mt19937_64 d_rng;
};

// Returns: an empty string when x holds the value ref in a valid form.
std::string check(const QNumber& x, mpq_srcptr ref) {
  Ref raw(x);
  Ref canon;
  mpq_set(canon.q, raw.q);
  mpq_canonicalize(canon.q);
  if (mpz_cmp(mpq_numref(raw.q), mpq_numref(canon.q)) != 0
      || mpz_cmp(mpq_denref(raw.q), mpq_denref(canon.q)) != 0) {
    return "not normalised: " + x.to_str();
  }
  if (!x.is_big() && !x.fits(64)) {
    return "small form out of range";
  }
  if (!x.is_big() && x.get_num() == INT64_MIN) {
    return "INT64_MIN in the small form";
  }
  if (mpq_equal(raw.q, ref) == 0) {
    return "got " + x.to_str() + ", expected " + QNumber(ref).to_str();
  }
  return "";
}

QNumber of(mpz_srcptr z) {
  Ref r;
  mpq_set_z(r.q, z);
  return QNumber(r.q);
}

constexpr int kRounds = 40000;

TEST(QNumber, ArithmeticAgreesWithGmp) {
  Gen gen(1);
  for (int i = 0; i < kRounds; ++i) {
    QNumber a = gen.number(), b = gen.number();
    Ref ra(a), rb(b), r;
    SCOPED_TRACE(a.to_str() + " op " + b.to_str());
    mpq_add(r.q, ra.q, rb.q);
    ASSERT_EQ(check(a + b, r.q), "");
    mpq_sub(r.q, ra.q, rb.q);
    ASSERT_EQ(check(a - b, r.q), "");
    mpq_mul(r.q, ra.q, rb.q);
    ASSERT_EQ(check(a * b, r.q), "");
    mpq_neg(r.q, ra.q);
    ASSERT_EQ(check(a.neg(), r.q), "");
    mpq_abs(r.q, ra.q);
    ASSERT_EQ(check(abs(a), r.q), "");
    QNumber c = a;
    c.self_addmul(a, b);
    mpq_mul(r.q, ra.q, rb.q);
    mpq_add(r.q, r.q, ra.q);
    ASSERT_EQ(check(c, r.q), "");
    if (!b.is_zero()) {
      mpq_div(r.q, ra.q, rb.q);
      ASSERT_EQ(check(a / b, r.q), "");
      mpq_inv(r.q, rb.q);
      ASSERT_EQ(check(b.inv(), r.q), "");
    }
  }
}

TEST(QNumber, OperationsWithWordsAgreeWithGmp) {
  Gen gen(2);
  for (int i = 0; i < kRounds; ++i) {
    QNumber a = gen.number();
    long w = gen.word();
    Ref ra(a), rw{QNumber(w)}, r;
    SCOPED_TRACE(a.to_str() + " op " + std::to_string(w));
    QNumber x = a;
    mpq_add(r.q, ra.q, rw.q);
    ASSERT_EQ(check(x += w, r.q), "");
    x = a;
    mpq_sub(r.q, ra.q, rw.q);
    ASSERT_EQ(check(x -= w, r.q), "");
    x = a;
    mpq_mul(r.q, ra.q, rw.q);
    ASSERT_EQ(check(x *= w, r.q), "");
    if (w != 0) {
      x = a;
      mpq_div(r.q, ra.q, rw.q);
      ASSERT_EQ(check(x /= w, r.q), "");
    }
    int c = mpq_cmp(ra.q, rw.q);
    ASSERT_EQ(a == w, c == 0);
    ASSERT_EQ(a < w, c < 0);
    ASSERT_EQ(a > w, c > 0);
  }
}

TEST(QNumber, ComparisonAndHashAcrossForms) {
  Gen gen(3);
  for (int i = 0; i < kRounds; ++i) {
    QNumber a = gen.number();
    QNumber b = gen.coin() ? gen.number() : a;
    if (gen.coin()) {
      b.make_big();
    }
    Ref ra(a), rb(b);
    int c = mpq_cmp(ra.q, rb.q);
    c = (c > 0) - (c < 0);
    SCOPED_TRACE(a.to_str() + " vs " + b.to_str());
    ASSERT_EQ(a.compare(b), c);
    ASSERT_EQ(a < b, c < 0);
    ASSERT_EQ(a <= b, c <= 0);
    ASSERT_EQ(a == b, c == 0);
    ASSERT_EQ(b.compare(a), -c);
    if (c == 0) {
      ASSERT_EQ(a.hash(), b.hash());
    }
  }
}

TEST(QNumber, IntegerOperationsAgreeWithGmp) {
  Gen gen(4);
  mpz_t z, q, r;
  mpz_inits(z, q, r, nullptr);
  for (int i = 0; i < kRounds; ++i) {
    QNumber a = gen.number(), n = gen.number(true), d = gen.number(true);
    Ref ra(a), rn(n), rd(d), rf, rc, g;
    SCOPED_TRACE(a.to_str() + ", " + n.to_str() + ", " + d.to_str());
    mpz_fdiv_q(mpq_numref(rf.q), mpq_numref(ra.q), mpq_denref(ra.q));
    mpz_cdiv_q(mpq_numref(rc.q), mpq_numref(ra.q), mpq_denref(ra.q));
    ASSERT_EQ(check(a.floor(), rf.q), "");
    ASSERT_EQ(check(a.ceil(), rc.q), "");
    QNumber whole = a;
    QNumber rest = whole.self_decompose();
    ASSERT_EQ(check(whole, rf.q), "");
    ASSERT_TRUE(rest >= 0L && rest < 1L && whole + rest == a);

    mpz_gcd(mpq_numref(g.q), mpq_numref(rn.q), mpq_numref(rd.q));
    ASSERT_EQ(check(gcd(n, d), g.q), "");
    // divmod on non-negative operands, where both of its regimes agree.
    QNumber un = abs(n), ud = abs(d);
    if (!ud.is_zero()) {
      mpz_abs(z, mpq_numref(rn.q));
      mpz_abs(r, mpq_numref(rd.q));
      mpz_fdiv_qr(q, r, z, r);
      QNumber qq, rr;
      un.divmod(ud, qq, rr);
      ASSERT_EQ(qq, of(q));
      ASSERT_EQ(rr, of(r));
      ASSERT_EQ(ud.divides(un), mpz_sgn(r) == 0);
      un.divmod(ud, un, ud);  // results may alias the operands
      ASSERT_TRUE(un == of(q) && ud == of(r));
    }
  }
  mpz_clears(z, q, r, nullptr);
}

TEST(QNumber, StringRoundTrips) {
  Gen gen(5);
  for (int i = 0; i < kRounds; ++i) {
    QNumber a = gen.number();
    std::string s = a.to_str();
    QNumber b = QNumber::from_str(s);
    ASSERT_EQ(a, b) << s;
    ASSERT_EQ(b.to_str(), s);
    // The reader picks the small form exactly when both parts fit.
    ASSERT_EQ(b.is_big(), !b.fits(64) || b.get_num() == INT64_MIN) << s;
  }
}

TEST(QNumber, WordPathAllocatesNothing) {
  static int allocations;
  void* (*alloc)(size_t);
  void* (*realloc_fn)(void*, size_t, size_t);
  void (*free_fn)(void*, size_t);
  mp_get_memory_functions(&alloc, &realloc_fn, &free_fn);
  allocations = 0;
  mp_set_memory_functions(
      [](size_t n) {
        ++allocations;
        return malloc(n);
      },
      [](void* p, size_t, size_t n) {
        ++allocations;
        return realloc(p, n);
      },
      [](void* p, size_t) { free(p); });
  QNumber acc, x(3, 7), y(-5, 11);
  for (long i = 1; i < 2000; ++i) {
    acc += x;
    acc -= QNumber(i, i + 1);
    acc *= y;
    acc /= QNumber(i % 13 + 1);
    (void)(acc < x);
    (void)(acc == y);
    acc = acc.floor() + (acc < 0L ? 1L : -1L);
  }
  mp_set_memory_functions(alloc, realloc_fn, free_fn);
  EXPECT_FALSE(acc.is_big());
  EXPECT_EQ(allocations, 0);
}

TEST(QNumber, BoundaryCases) {
  QNumber max(INT64_MAX);
  QNumber sum = max + QNumber(1);
  EXPECT_TRUE(sum.is_big());
  EXPECT_EQ(sum.to_str(), "9223372036854775808");
  EXPECT_EQ((sum - 1L).to_str(), "9223372036854775807");

  QNumber min = QNumber::from_str("-9223372036854775808");
  EXPECT_TRUE(min.is_big());
  EXPECT_EQ(min.to_str(), "-9223372036854775808");
  EXPECT_EQ(min.neg(), sum);
  EXPECT_EQ(QNumber(INT64_MIN), min);
  EXPECT_TRUE(QNumber(INT64_MIN).is_big());
  EXPECT_EQ(QNumber(INT64_MIN, 2).to_str(), "-4611686018427387904");
  EXPECT_EQ(QNumber(3, INT64_MIN).to_str(), "-3/9223372036854775808");
  EXPECT_EQ((QNumber(-INT64_MAX) - 1L), min);
  EXPECT_EQ(QNumber(-6, -4).to_str(), "3/2");
  EXPECT_EQ(QNumber(0, -4).to_str(), "0");

  // A big product with small zero is small zero again.
  QNumber big_val = sum * sum;
  big_val *= QNumber(0);
  EXPECT_FALSE(big_val.is_big());
  EXPECT_EQ(big_val, QNumber::zero());
}

TEST(QNumber, ReadsTheListedForms) {
  EXPECT_EQ(QNumber::from_str("0.5"), QNumber(1, 2));
  EXPECT_EQ(QNumber::from_str("1.5e2"), QNumber(150));
  EXPECT_EQ(QNumber::from_str("1e-2"), QNumber(1, 100));
  EXPECT_EQ(QNumber::from_str("2/4").to_str(), "1/2");
  EXPECT_EQ(QNumber::from_str("-0").to_str(), "0");
  EXPECT_EQ(QNumber::from_str("").to_str(), "0");
  EXPECT_EQ(QNumber::from_str("-").to_str(), "0");
  EXPECT_EQ(QNumber::from_str("-2.50").to_str(), "-5/2");
  EXPECT_EQ(QNumber::from_str("12E3").to_str(), "12000");
  EXPECT_EQ(QNumber::from_str("4/-6").to_str(), "-2/3");
  EXPECT_FALSE(QNumber::from_str("9223372036854775807").is_big());
  EXPECT_FALSE(QNumber::from_str("-9223372036854775807").is_big());
  EXPECT_TRUE(QNumber::from_str("9223372036854775808").is_big());
  EXPECT_FALSE(QNumber::from_str("92233720368547758070e-1").is_big());
  for (const char* bad : {"1/0", "abc", "1e", "1.2.3", ".", "1e99999999"}) {
    try {
      QNumber::from_str(bad);
      ADD_FAILURE() << bad << " was accepted";
    } catch (const QNumber::error& e) {
      EXPECT_EQ(e.message(),
                std::string("invalid argument to Number::from_str: ") + bad);
    }
  }
}

TEST(QNumber, BigEqualToSmallIsOneHashKey) {
  QNumber small(5);
  QNumber big(5);
  big.make_big();
  EXPECT_TRUE(big.is_big());
  EXPECT_EQ(small, big);
  EXPECT_EQ(small.hash(), big.hash());
  QNumber f(-7, 3), fb = f;
  fb.make_big();
  EXPECT_EQ(f.hash(), fb.hash());
  EXPECT_FALSE(f < fb || fb < f);
}

TEST(QNumber, TextAndConversions) {
  EXPECT_EQ(QNumber(1, 3).to_float_str(4), "0.3333");
  EXPECT_EQ(QNumber(-5, 2).to_float_str(1), "-2.5");
  EXPECT_DOUBLE_EQ(QNumber(1, 4).to_double(), 0.25);
  EXPECT_TRUE(QNumber(127).fits(8));
  EXPECT_FALSE(QNumber(128).fits(8));
  EXPECT_TRUE(QNumber(-128).fits(8));
  EXPECT_FALSE(QNumber(1, 200).fits(8));
  EXPECT_TRUE(QNumber(INT64_MIN).fits(64));
  EXPECT_FALSE((QNumber(INT64_MAX) + 1L).fits(64));
  EXPECT_EQ(QNumber(-7, 3).get_num(), QNumber(-7));
  EXPECT_EQ(QNumber(-7, 3).get_den(), QNumber(3));
  std::ostringstream out;
  out << QNumber(-7, 3);
  EXPECT_EQ(out.str(), "-7/3");
}

// ---------------------------------------------------------------------------

TEST(BVNumber, ListedCases) {
  EXPECT_EQ(BVNumber::neg(8, QNumber(0)), QNumber(0));
  EXPECT_EQ(BVNumber::neg(8, QNumber(1)), QNumber(255));
  QNumber out;
  BVNumber::sdiv(8, QNumber(248), QNumber(2), out);
  EXPECT_EQ(out, QNumber(252));
  BVNumber::sdiv(8, QNumber(248), QNumber(254), out);  // -8 / -2
  EXPECT_EQ(out, QNumber(4));
  EXPECT_EQ(BVNumber::count_leading_zeros(QNumber(0), 8), 8u);
  EXPECT_EQ(BVNumber::count_leading_zeros(QNumber(5), 8), 5u);
  EXPECT_EQ(BVNumber::count_leading_zeros(QNumber(256), 8), 0u);
  EXPECT_EQ(BVNumber::scan_bit_1(QNumber(0), 0), -1);
  EXPECT_EQ(BVNumber::scan_bit_1(QNumber(12), 3), 3);
  BVNumber::lshl(8, QNumber(1), QNumber(8), out);
  EXPECT_EQ(out, QNumber(0));
  BVNumber::lshr(8, QNumber(255), QNumber(9), out);
  EXPECT_EQ(out, QNumber(0));
  QNumber x(0);
  BVNumber::set_bit(x, 63, true);
  EXPECT_TRUE(x.is_big());
  EXPECT_EQ(x.to_str(), "9223372036854775808");
  EXPECT_EQ(x, BVNumber::pow2(63));
  EXPECT_TRUE(BVNumber::test_bit(x, 63));
  EXPECT_FALSE(BVNumber::test_bit(QNumber(INT64_MAX), 64));
  EXPECT_EQ(BVNumber::to_signed(QNumber(255), 8), QNumber(-1));
  EXPECT_EQ(BVNumber::twos_complement(QNumber(-1), 8), QNumber(255));
  EXPECT_EQ(BVNumber::to_binary(QNumber(5), 6), "000101");
  EXPECT_EQ(BVNumber::to_hex(QNumber(5), 8), "05");
  EXPECT_EQ(BVNumber::to_hex(BVNumber::pow2(64) - 1L, 68), "0ffffffffffffffff");
  EXPECT_EQ(BVNumber::from_str("ff", 16), QNumber(255));
  EXPECT_EQ(BVNumber::from_str("1" + std::string(64, '0'), 2),
            BVNumber::pow2(64));
  EXPECT_THROW(BVNumber::from_str("12", 2), QNumber::error);
  EXPECT_THROW(BVNumber::from_str("", 10), QNumber::error);
}

// Bit operations on random values of random widths, against GMP.
TEST(BVNumber, AgreesWithGmp) {
  std::mt19937_64 rng(6);
  Gen gen(7);
  mpz_t za, zb, r;
  mpz_inits(za, zb, r, nullptr);
  for (int i = 0; i < kRounds / 4; ++i) {
    size_t w = 1 + rng() % 130;
    auto value = [&] {
      QNumber v = abs(gen.number(true));
      return BVNumber::trim(gen.coin() ? v : v * v * v, w);
    };
    QNumber a = value(), b = value();
    a.num_to_mpz(za);
    b.num_to_mpz(zb);
    // The result, in the small form whenever it fits.
    auto same = [&](const QNumber& got) {
      return got == of(r) && got.is_big() == !got.fits(64);
    };
    SCOPED_TRACE(std::to_string(w) + ": " + a.to_str() + ", " + b.to_str());
    QNumber out;
    size_t k = rng() % (w + 2);
    BVNumber::lshl(w, a, QNumber(long(k)), out);
    mpz_mul_2exp(r, za, k);
    mpz_fdiv_r_2exp(r, r, w);
    ASSERT_TRUE(same(out));
    BVNumber::lshr(w, a, QNumber(long(k)), out);
    mpz_fdiv_q_2exp(r, za, k);
    ASSERT_TRUE(same(out));
    BVNumber::bit_xor_l(a, b, out);
    mpz_xor(r, za, zb);
    ASSERT_TRUE(same(out));
    BVNumber::bit_and_l(a, b, out);
    mpz_and(r, za, zb);
    ASSERT_TRUE(same(out));
    BVNumber::bit_or_l(a, b, out);
    mpz_ior(r, za, zb);
    ASSERT_TRUE(same(out));
    if (!b.is_zero()) {
      // Truncating signed division, wrapped to w bits.
      BVNumber::sdiv(w, a, b, out);
      BVNumber::to_signed(a, w).num_to_mpz(za);
      BVNumber::to_signed(b, w).num_to_mpz(zb);
      mpz_tdiv_q(r, za, zb);
      mpz_fdiv_r_2exp(r, r, w);
      ASSERT_TRUE(same(out));
    }
    QNumber sum = BVNumber::neg(w, a) + a;
    ASSERT_EQ(sum, a.is_zero() ? QNumber(0) : BVNumber::pow2(w));
    ASSERT_EQ(BVNumber::from_str(BVNumber::to_binary(a, w), 2), a);
    if (w % 4 == 0) {
      ASSERT_EQ(BVNumber::from_str(BVNumber::to_hex(a, w), 16), a);
    }
    ASSERT_EQ(BVNumber::twos_complement(BVNumber::to_signed(a, w), w), a);
  }
  mpz_clears(za, zb, r, nullptr);
}

}  // namespace
}  // namespace zenlo
