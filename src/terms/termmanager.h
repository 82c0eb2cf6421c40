// The term store: the factory and the memory of all formulas. A
// TermManager owns the types (TypeUniverse), the symbols (Signature) and
// the hash-consed term nodes (TermBank), and it is the only way to make
// any of them. Everything above compares terms, symbols and types by
// pointer and keys its tables by id.
//
// Every constructor ends in the virtual make_term, which type-checks the
// arguments, offers the application to the installed TermSimplifier (when
// simplifications are on), and otherwise hash-conses it as it stands. The
// store does no reasoning of its own; it only knows the meaning of its
// symbols' types well enough to check them.
//
// Interpreted symbols beyond the fixed standard signature are made on first
// use and memoised per family (bit-vector addition of width 8, equality
// over a type, ...), in both directions, so `is_bv_add(s, &w)` answers with
// the parameters. Numbers are constants whose name is the printed value.
//
// Terms die only by gc(); there is no reference counting. A TermManager is
// single-threaded: it reuses scratch vectors between calls.
#ifndef ZENLO_TERMS_TERMMANAGER_H
#define ZENLO_TERMS_TERMMANAGER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "terms/bitset.h"
#include "terms/hashtable.h"
#include "terms/ieeefloat.h"
#include "terms/numbers.h"
#include "terms/signature.h"
#include "terms/symbolfamilies.h"
#include "terms/symboltag.h"
#include "terms/term.h"
#include "terms/termbank.h"
#include "terms/termsimplifier.h"
#include "terms/typeuniverse.h"

namespace zenlo {

struct VisitScratch;
class FreeVariableMap;

class TermManager : public SymbolFamilies {
 public:
  ZENLO_DECLARE_ERROR;

  // After: the standard signature exists, `true` and `false` have ids 1
  // and 2; type checking on, simplifications off, Bool function arguments
  // forbidden.
  TermManager();
  virtual ~TermManager();
  TermManager(const TermManager&) = delete;
  TermManager& operator=(const TermManager&) = delete;

  // ------------------------------------------------------------------
  // The door of every application.
  // ------------------------------------------------------------------

  // Requires: every argument is a term of this store.
  // Returns: symbol(args), possibly rewritten by the simplifier.
  // Throws: error on wrong arity, and (with type checking on) on an
  //   argument whose type is not a subtype of the declared one.
  virtual const Term_* make_term(const Symbol* symbol, const TermList& args);

  // Hash-conses symbol(args) with no check and no simplification; the end
  // of every simplifier. Requires: args.size() is the symbol's arity.
  const Term_* do_make_term(const Symbol* symbol, const TermList& args);

  // ------------------------------------------------------------------
  // Switches.
  // ------------------------------------------------------------------

  void enable_typechecking(bool on) { d_typecheck = on; }

  bool typechecking_enabled() const { return d_typecheck; }

  void enable_simplifications(bool on) { d_simplify = on; }

  bool simplifications_enabled() const { return d_simplify; }

  void set_simplifier(TermSimplifier* s) { d_simplifier = s; }

  TermSimplifier* get_simplifier() const { return d_simplifier; }

  // Whether function and array types may take Bool arguments.
  void set_forbid_bool_args(bool forbid) { d_forbid_bool_args = forbid; }

  bool bool_args_forbidden() const { return d_forbid_bool_args; }

  // ------------------------------------------------------------------
  // Types.
  // ------------------------------------------------------------------

  const Type* get_bool_type() const { return d_bool_type; }

  const Type* get_real_type() const { return d_real_type; }

  const Type* get_integer_type() const { return d_int_type; }

  const Type* get_fprounding_type() const { return d_fprounding_type; }

  // Returns: the simple type of that name; made on first use unless
  // `only_lookup`, in which case null answers a missing name.
  const Type* get_simple_type(std::string_view name, bool only_lookup = false);
  // Requires: width > 0.
  const Type* get_bv_type(size_t width);
  const Type* get_array_type(const Type* index, const Type* element);
  // Throws (with type checking on): error for widths under 2.
  const Type* get_fp_type(size_t exp_w, size_t mant_w);
  const Type* get_function_type(const std::vector<const Type*>& args,
                                const Type* ret);
  const Type* get_compound_type(const std::vector<const Type*>& components);
  // Returns: the enumerated type `name` with one constant per value.
  // Throws: error when the name is a type already (unless the same enum),
  //   or a value name is a symbol already.
  const Type* get_enum_type(std::string_view name,
                            const std::vector<std::string>& values);
  // Returns: whichever of a and b the other is a subtype of.
  // Throws: error for unrelated types.
  const Type* get_supertype(const Type* a, const Type* b) const;

  bool is_subtype(const Type* a, const Type* b) const {
    return a == b || d_universe.is_subtype(a, b);
  }

  bool is_bool_type(const Type* t) const { return t == d_bool_type; }

  bool is_real_type(const Type* t) const { return t == d_real_type; }

  bool is_integer_type(const Type* t) const { return t == d_int_type; }

  // Int or Real.
  bool is_arithmetic_type(const Type* t) const {
    return t == d_int_type || t == d_real_type;
  }

  bool is_fprounding_type(const Type* t) const {
    return t == d_fprounding_type;
  }

  bool is_bv_type(const Type* t, size_t* width = nullptr) const;
  bool is_fp_type(const Type* t,
                  size_t* exp_w = nullptr,
                  size_t* mant_w = nullptr) const;
  bool is_array_type(const Type* t,
                     const Type** index = nullptr,
                     const Type** element = nullptr) const;
  bool is_function_type(const Type* t) const;
  bool is_enum_type(const Type* t) const;

  bool has_enum_types() const { return !d_enum_values.empty(); }

  // Returns: the value symbols of an enum type, null for other types.
  const std::vector<const Symbol*>* get_enum_values(const Type* t) const;
  // Returns: whether the type has finitely many values, and how many.
  bool is_finite_domain_type(const Type* t,
                             QNumber* cardinality = nullptr) const;

  TypeUniverse& get_universe() { return d_universe; }

  // ------------------------------------------------------------------
  // Symbols.
  // ------------------------------------------------------------------

  // Declares a user symbol. Throws: error for an empty name, a name that
  // begins with a backtick or a single quote, or a name taken by a symbol
  // of another type.
  const Symbol* make_symbol(std::string_view name, const Type* type);
  // The same under a name not yet taken (see get_unused_symbol_name).
  const Symbol* make_unique_symbol(std::string_view name, const Type* type);
  // Returns: name if free, else the first free of name_0, name_1, ...
  std::string get_unused_symbol_name(std::string_view name) const;

  // Returns: the live symbol of that stored name, or null.
  const Symbol* find_symbol(std::string_view name) const {
    return d_signature.get_symbol(name);
  }

  Signature& get_signature() { return d_signature; }

  SymbolTag::tag get_tag(const Symbol* s) const { return s->d_tag; }

  bool is_number(const Symbol* s, QNumber* value = nullptr) const;

  bool is_number_term(const Term_* t) const {
    return t->get_arity() == 0 && is_number(t->get_symbol());
  }

  // Returns: the value of a number term (for floats, the bit pattern).
  // Throws: error when t is no number.
  const QNumber& get_number_value(const Term_* t) const;
  bool is_variable(const Symbol* s) const;
  bool is_interpreted(const Symbol* s) const;
  bool is_constant(const Symbol* s) const;
  bool is_uninterpreted_function(const Symbol* s) const;
  bool is_enum_value(const Symbol* s) const;

  bool is_quantifier(const Symbol* s) const {
    return s->d_tag == SymbolTag::FORALL || s->d_tag == SymbolTag::EXISTS;
  }

  bool is_forall(const Symbol* s) const {
    return s->d_tag == SymbolTag::FORALL;
  }

  bool is_exists(const Symbol* s) const {
    return s->d_tag == SymbolTag::EXISTS;
  }

  // The standard signature.
  const Symbol* get_true_symbol() const { return d_true_sym; }

  const Symbol* get_false_symbol() const { return d_false_sym; }

  const Symbol* get_not_symbol() const { return d_not_sym; }

  const Symbol* get_and_symbol() const { return d_and_sym; }

  const Symbol* get_or_symbol() const { return d_or_sym; }

  const Symbol* get_iff_symbol() const { return d_iff_sym; }

  const Symbol* get_plus_symbol(bool integer) const {
    return integer ? d_plus_int : d_plus_rat;
  }

  const Symbol* get_times_symbol(bool integer) const {
    return integer ? d_times_int : d_times_rat;
  }

  const Symbol* get_leq_symbol(bool integer) const {
    return integer ? d_leq_int : d_leq_rat;
  }

  const Symbol* get_divide_symbol() const { return d_divide_sym; }

  const Symbol* get_floor_symbol() const { return d_floor_sym; }

  const Symbol* get_rounding_symbol(RoundingMode m) const {
    return d_rounding_sym[static_cast<int>(m)];
  }

  // Returns: the rounding mode a rounding constant denotes.
  // Throws: error "unsupported rounding mode: ..." for any other term.
  RoundingMode get_rounding_mode(const Term_* t) const;

  // ------------------------------------------------------------------
  // Terms. Boolean and arithmetic constructors take one or two arguments;
  // callers nest longer chains. The arithmetic ones pick the Int symbol
  // when both arguments are exactly Int, the Real one otherwise.
  // ------------------------------------------------------------------

  const Term_* make_true() const { return d_true; }

  const Term_* make_false() const { return d_false; }

  const Term_* make_constant(const Symbol* s);
  const Term_* make_uninterpreted_function(const Symbol* s,
                                           const TermList& args);
  const Term_* make_and(const Term_* a, const Term_* b);
  const Term_* make_or(const Term_* a, const Term_* b);
  const Term_* make_not(const Term_* a);
  const Term_* make_iff(const Term_* a, const Term_* b);
  const Term_* make_leq(const Term_* a, const Term_* b);
  const Term_* make_plus(const Term_* a, const Term_* b);
  const Term_* make_times(const Term_* a, const Term_* b);
  const Term_* make_divide(const Term_* a, const Term_* b);
  const Term_* make_floor(const Term_* a);
  // Throws: error for Bool arguments (use make_iff).
  const Term_* make_equal(const Term_* a, const Term_* b);
  // make_iff for Bool arguments, make_equal otherwise.
  const Term_* make_eq(const Term_* a, const Term_* b);
  // Throws: error for Bool branches.
  const Term_* make_term_ite(const Term_* c, const Term_* a, const Term_* b);
  const Term_* make_pi();
  const Term_* make_exp(const Term_* a);
  const Term_* make_sin(const Term_* a);
  const Term_* make_log(const Term_* a);
  const Term_* make_pow(const Term_* a, const Term_* b);
  const Term_* make_asin(const Term_* a);

  // Numbers. A rational is an Int term when integral, else Real.
  const Term_* make_number(const QNumber& value);

  const Term_* make_number(long value) { return make_number(QNumber(value)); }

  // Requires (checked with type checking on): 0 <= value < 2^width.
  const Term_* make_bv_number(const QNumber& value, size_t width);
  // Digits in base 2, 10 or 16.
  const Term_* make_bv_number(const std::string& digits,
                              size_t width,
                              int base);
  // A float by its IEEE bit pattern. Requires: 0 <= bits < 2^(e+m+1).
  const Term_* make_fp_bits_number(const QNumber& bits, size_t e, size_t m);
  // The float nearest to `value` under the rounding mode of `rounding`.
  const Term_* make_fp_rat_number(const QNumber& value,
                                  size_t e,
                                  size_t m,
                                  const Term_* rounding);
  const Term_* make_fp_plus_inf(size_t e, size_t m);
  const Term_* make_fp_minus_inf(size_t e, size_t m);
  const Term_* make_fp_nan(size_t e, size_t m);
  const Term_* make_fp_rounding_mode(RoundingMode mode);

  // Bit-vectors.
  const Term_* make_bv_concat(const Term_* a, const Term_* b);
  const Term_* make_bv_extract(size_t msb, size_t lsb, const Term_* a);
  const Term_* make_bv_not(const Term_* a);
  const Term_* make_bv_neg(const Term_* a);
  const Term_* make_bv_and(const Term_* a, const Term_* b);
  const Term_* make_bv_or(const Term_* a, const Term_* b);
  const Term_* make_bv_xor(const Term_* a, const Term_* b);
  const Term_* make_bv_add(const Term_* a, const Term_* b);
  const Term_* make_bv_sub(const Term_* a, const Term_* b);
  const Term_* make_bv_mul(const Term_* a, const Term_* b);
  const Term_* make_bv_udiv(const Term_* a, const Term_* b);
  const Term_* make_bv_sdiv(const Term_* a, const Term_* b);
  const Term_* make_bv_urem(const Term_* a, const Term_* b);
  const Term_* make_bv_srem(const Term_* a, const Term_* b);
  const Term_* make_bv_lshl(const Term_* a, const Term_* b);
  const Term_* make_bv_lshr(const Term_* a, const Term_* b);
  const Term_* make_bv_ashr(const Term_* a, const Term_* b);
  const Term_* make_bv_ult(const Term_* a, const Term_* b);
  const Term_* make_bv_ule(const Term_* a, const Term_* b);
  const Term_* make_bv_slt(const Term_* a, const Term_* b);
  const Term_* make_bv_sle(const Term_* a, const Term_* b);
  const Term_* make_bv_comp(const Term_* a, const Term_* b);
  const Term_* make_bv_rol(size_t amount, const Term_* a);
  const Term_* make_bv_ror(size_t amount, const Term_* a);
  const Term_* make_bv_zext(size_t amount, const Term_* a);
  const Term_* make_bv_sext(size_t amount, const Term_* a);

  // Integers and bit-vectors.
  const Term_* make_int_to_bv(size_t width, const Term_* a);
  const Term_* make_int_from_ubv(const Term_* a);
  const Term_* make_int_from_sbv(const Term_* a);
  // a and b are congruent modulo `modulus`.
  const Term_* make_int_modular_congruence(const QNumber& modulus,
                                           const Term_* a,
                                           const Term_* b);

  // Arrays.
  const Term_* make_array_read(const Term_* array, const Term_* index);
  const Term_* make_array_write(const Term_* array,
                                const Term_* index,
                                const Term_* element);
  const Term_* make_array_const(const Type* array_type, const Term_* element);

  // Floating point. Operations that round take the rounding term first.
  const Term_* make_fp_equal(const Term_* a, const Term_* b);
  const Term_* make_fp_lt(const Term_* a, const Term_* b);
  const Term_* make_fp_le(const Term_* a, const Term_* b);
  const Term_* make_fp_neg(const Term_* a);
  const Term_* make_fp_abs(const Term_* a);
  const Term_* make_fp_add(const Term_* r, const Term_* a, const Term_* b);
  const Term_* make_fp_sub(const Term_* r, const Term_* a, const Term_* b);
  const Term_* make_fp_mul(const Term_* r, const Term_* a, const Term_* b);
  const Term_* make_fp_div(const Term_* r, const Term_* a, const Term_* b);
  const Term_* make_fp_sqrt(const Term_* r, const Term_* a);
  const Term_* make_fp_min(const Term_* a, const Term_* b);
  const Term_* make_fp_max(const Term_* a, const Term_* b);
  const Term_* make_fp_round_to_int(const Term_* r, const Term_* a);
  const Term_* make_fp_cast(size_t e, size_t m, const Term_* r, const Term_* a);
  const Term_* make_fp_from_sbv(size_t e,
                                size_t m,
                                const Term_* r,
                                const Term_* a);
  const Term_* make_fp_from_ubv(size_t e,
                                size_t m,
                                const Term_* r,
                                const Term_* a);
  const Term_* make_fp_to_sbv(size_t width, const Term_* r, const Term_* a);
  const Term_* make_fp_to_ubv(size_t width, const Term_* r, const Term_* a);
  const Term_* make_fp_as_ieeebv(const Term_* a);
  const Term_* make_fp_from_ieeebv(size_t e, size_t m, const Term_* a);
  const Term_* make_fp_isnan(const Term_* a);
  const Term_* make_fp_isinf(const Term_* a);
  const Term_* make_fp_iszero(const Term_* a);
  const Term_* make_fp_issubnormal(const Term_* a);
  const Term_* make_fp_isnormal(const Term_* a);
  const Term_* make_fp_isneg(const Term_* a);
  const Term_* make_fp_ispos(const Term_* a);

  // Quantifiers and bound variables. A quantifier term has two children,
  // the variable and the body.
  const Term_* make_forall(const Term_* var, const Term_* body) {
    return make_quantifier(SymbolTag::FORALL, var, body);
  }

  const Term_* make_exists(const Term_* var, const Term_* body) {
    return make_quantifier(SymbolTag::EXISTS, var, body);
  }

  // Requires: tag FORALL or EXISTS. Throws: error when var is no variable.
  const Term_* make_quantifier(SymbolTag::tag tag,
                               const Term_* var,
                               const Term_* body);
  // A variable named by a counter that is never reset.
  const Term_* make_fresh_variable(const Type* type);
  // A new variable named after `name`, made unique.
  const Term_* make_named_variable(std::string_view name, const Type* type);
  // Binds each constant of `vars` existentially in `term`, the first one
  // outermost. Returns `term` itself for an empty list.
  const Term_* existentially_quantify(const Term_* term, const TermList& vars);

  // ------------------------------------------------------------------
  // Whole-term operations.
  // ------------------------------------------------------------------

  // Replaces each key of `map` by its value, all at once, rebuilding the
  // terms above through make_term (so the simplifier runs). With
  // `typecheck`, each value's type must be a subtype of its key's, and the
  // rebuilt terms are type-checked; without, neither is.
  const Term_* substitute(const Term_* term,
                          const TermMap& map,
                          bool typecheck = true);
  // The same with the map given as two sequences of equal length.
  const Term_* substitute(const Term_* term,
                          const TermList& from,
                          const TermList& to,
                          bool typecheck = true);
  // The same, and the map built from the sequences goes to `out_map`.
  const Term_* substitute(const Term_* term,
                          const TermList& from,
                          const TermList& to,
                          TermMap& out_map,
                          bool typecheck = true);
  // The same with the sequences as arrays of n terms.
  const Term_* substitute(const Term_* term,
                          const Term_* const* from,
                          const Term_* const* to,
                          size_t n,
                          bool typecheck = true);
  // Substitutes in several terms with one memo: out[i] is terms[i]
  // substituted.
  void substitute(const TermList& terms,
                  const TermMap& map,
                  TermList& out,
                  bool typecheck = true);

  // Copying from another store. Interpreted symbols are recreated by tag
  // and parameters, numbers by value, other symbols by name; when `from`
  // is this store the term itself is the copy.
  const Term_* copy_term(TermManager& from, const Term_* term);
  // The same with `subst` (terms of `from` to terms of this store) seeding
  // the copy: a key is not descended into and becomes its value.
  const Term_* copy_term_with_subst(TermManager& from,
                                    const Term_* term,
                                    const TermMap& subst);
  void copy_terms(TermManager& from, const TermList& terms, TermList& out);
  void copy_types(TermManager& from,
                  const std::vector<const Type*>& types,
                  std::vector<const Type*>& out);
  void copy_symbols(TermManager& from,
                    const std::vector<const Symbol*>& symbols,
                    std::vector<const Symbol*>& out);

  // The variables free in each subterm of `term`.
  FreeVariableMap get_free_variable_map(const Term_* term);

  FreeVariableMap get_free_variable_set_map(const Term_* term);

  // Collects everything not reachable from the roots. `true`, `false`, the
  // standard signature and the base types always survive.
  // After: every other term, symbol and type handle is invalid, except that
  //   a dropped symbol stays allocated (and revivable by declaring it again
  //   with the same type) until the next collection; the next new term gets
  //   the id after the largest surviving one.
  void gc(const TermList& root_terms,
          const std::vector<const Symbol*>& root_symbols,
          const std::vector<const Type*>& root_types);

  // Returns: the term with that id, or null. A scan of the whole store.
  const Term_* debug_get_term(uint64_t id) const {
    return d_bank.find_by_id(id);
  }

  size_t num_terms() const { return d_bank.size(); }

  // ------------------------------------------------------------------
  // Printing.
  // ------------------------------------------------------------------

  // Log form of a literal: `and`, `or` and `iff` shallow, constants in
  // full, other applications down to depth 10.
  std::string to_shallow_str_literal(const Term_* t) const;

  // ------------------------------------------------------------------
  // For TermVisitor: scratch state of walks, reused between walks. Nested
  // walks get separate scratch.
  // ------------------------------------------------------------------
  VisitScratch* acquire_visit_scratch();
  void release_visit_scratch(VisitScratch* s);

 private:
  friend class TermCopier;
  class ScratchArgs;

  // Start.
  void make_base_types();
  void initialize_standard_signature();
  const Symbol* add_interpreted_symbol(std::string_view name,
                                       const Type* type,
                                       SymbolTag::tag tag);
  const Type* function_type_unchecked(const std::vector<const Type*>& args,
                                      const Type* ret);

  // Application helpers: the running constructor's name goes into the
  // type-error message.
  const Term_* apply(const char* ctor, const Symbol* s, const Term_* a);
  const Term_* apply(const char* ctor,
                     const Symbol* s,
                     const Term_* a,
                     const Term_* b);
  const Term_* apply(const char* ctor,
                     const Symbol* s,
                     const Term_* a,
                     const Term_* b,
                     const Term_* c);
  void typecheck(const Symbol* s, const TermList& args);
  const Symbol* arith_symbol(const Term_* a,
                             const Term_* b,
                             const Symbol* int_sym,
                             const Symbol* rat_sym) const;
  const Type* equality_type(const Term_* a, const Term_* b) const;

  // Argument checks of the bit-vector and floating-point families.
  size_t bv_width_of(const Term_* t, const char* what) const;
  void fp_format_of(const Term_* t, size_t& e, size_t& m) const;
  const Term_* bv_binary(const char* ctor,
                         SymbolTag::tag tag,
                         const Term_* a,
                         const Term_* b);
  const Term_* bv_unary(const char* ctor, SymbolTag::tag tag, const Term_* a);
  const Term_* bv_indexed(const char* ctor,
                          SymbolTag::tag tag,
                          size_t amount,
                          const Term_* a);
  const Term_* fp_unary(const char* ctor, SymbolTag::tag tag, const Term_* a);
  const Term_* fp_binary(const char* ctor,
                         SymbolTag::tag tag,
                         const Term_* a,
                         const Term_* b);
  const Term_* fp_rounded(const char* ctor,
                          SymbolTag::tag tag,
                          const Term_* r,
                          const Term_* a,
                          const Term_* b);
  const Term_* fp_from_bv(const char* ctor,
                          SymbolTag::tag tag,
                          size_t e,
                          size_t m,
                          const Term_* r,
                          const Term_* a);
  const Term_* fp_to_bv(const char* ctor,
                        SymbolTag::tag tag,
                        size_t w,
                        const Term_* r,
                        const Term_* a);
  const Term_* int_from_bv(const char* ctor,
                           SymbolTag::tag tag,
                           const Term_* a);

  // Families.
  const Symbol* create_family_symbol(SymbolTag::tag tag,
                                     const FamilyKey& key) override;
  const Symbol* create_congruence_symbol(const QNumber& modulus) override;
  std::string family_name(SymbolTag::tag tag, const FamilyKey& k) const;
  const Type* family_signature(SymbolTag::tag tag, const FamilyKey& k);
  const Type* fp_family_signature(SymbolTag::tag tag, const FamilyKey& k);
  std::string type_name_part(const Type* t) const;

  // Numbers.
  const Symbol* number_symbol(const std::string& name,
                              const Type* type,
                              const QNumber& value);
  const Term_* number_term(const std::string& name,
                           const Type* type,
                           const QNumber& value);
  QNumber checked_bv_value(const QNumber& value,
                           size_t width,
                           const char* what);

  // Variables.
  void check_variable_type(const Type* type) const;
  const Term_* make_variable_term(const std::string& name, const Type* type);

  // Collection.
  void gc_keep_sym(const Symbol* s, SymbolSet& kept_syms, TypeSet& kept_types);
  void gc_insert_tps(const Type* t, TypeSet& kept_types);
  void gc_mark_terms(const TermList& roots,
                     BitSet& marked,
                     SymbolSet& kept_syms,
                     TypeSet& kept_types);
  void gc_prune_tables(const BitSet& marked,
                       const SymbolSet& kept_syms,
                       const TypeSet& kept_types);

  TypeUniverse d_universe;
  Signature d_signature;
  TermBank d_bank;

  const Type* d_bool_type = nullptr;
  const Type* d_real_type = nullptr;
  const Type* d_int_type = nullptr;
  const Type* d_array_marker = nullptr;
  const Type* d_bv_marker = nullptr;
  const Type* d_fprounding_type = nullptr;
  const Type* d_fp_marker = nullptr;

  const Symbol* d_true_sym = nullptr;
  const Symbol* d_false_sym = nullptr;
  const Symbol* d_not_sym = nullptr;
  const Symbol* d_and_sym = nullptr;
  const Symbol* d_or_sym = nullptr;
  const Symbol* d_iff_sym = nullptr;
  const Symbol* d_plus_rat = nullptr;
  const Symbol* d_times_rat = nullptr;
  const Symbol* d_divide_sym = nullptr;
  const Symbol* d_leq_rat = nullptr;
  const Symbol* d_plus_int = nullptr;
  const Symbol* d_times_int = nullptr;
  const Symbol* d_leq_int = nullptr;
  const Symbol* d_floor_sym = nullptr;
  const Symbol* d_pi_sym = nullptr;
  const Symbol* d_exp_sym = nullptr;
  const Symbol* d_sin_sym = nullptr;
  const Symbol* d_log_sym = nullptr;
  const Symbol* d_asin_sym = nullptr;
  const Symbol* d_pow_sym = nullptr;
  const Symbol* d_rounding_sym[4] = {nullptr, nullptr, nullptr, nullptr};
  // Every symbol made at start, in order: what a collection always keeps
  // and what copying matches by position.
  std::vector<const Symbol*> d_standard;

  const Term_* d_true = nullptr;
  const Term_* d_false = nullptr;

  // Bit-vector and floating-point types, by width or format and back from
  // the width or format type (the second component).
  hsh::HashMap<size_t, const Type*> d_bv_types;
  hsh::HashMap<const Type*, size_t> d_bv_widths;
  hsh::HashMap<FamilyKey, const Type*, FamilyKeyHash> d_fp_types;
  hsh::HashMap<const Type*, std::pair<size_t, size_t>> d_fp_formats;
  hsh::HashMap<const Type*, std::vector<const Symbol*>> d_enum_values;
  hsh::HashMap<const Symbol*, const Type*> d_enum_of_value;

  // Value of every number symbol; rational number terms by value.
  hsh::HashMap<const Symbol*, QNumber> d_number_values;
  hsh::HashMap<QNumber, const Term_*, QNumberHash> d_rational_terms;

  bool d_typecheck = true;
  bool d_simplify = false;
  bool d_forbid_bool_args = true;
  TermSimplifier* d_simplifier = nullptr;
  // Name of the running constructor for type-error messages; reset by
  // typecheck.
  const char* d_constructor = nullptr;
  uint64_t d_fresh_var_counter = 1;

  // Argument vectors of the specific constructors, one per nesting depth:
  // a simplifier calls back into the constructors while the outer vector
  // is still in use.
  std::vector<std::unique_ptr<TermList>> d_scratch;
  size_t d_scratch_depth = 0;
  std::vector<VisitScratch*> d_visit_free;
};

// Sets the simplifier's switch for a scope, and sets it back as it was on
// every way out. Off: atoms that a solver makes for the search must keep
// the form it gave them, since simplified they can come back as other
// atoms. On: evaluating a term under a model folds it to a number.
class SimplificationScope {
 public:
  SimplificationScope(TermManager& tm, bool on)
      : d_tm(tm), d_was_on(tm.simplifications_enabled()) {
    tm.enable_simplifications(on);
  }

  ~SimplificationScope() { d_tm.enable_simplifications(d_was_on); }

  SimplificationScope(const SimplificationScope&) = delete;
  SimplificationScope& operator=(const SimplificationScope&) = delete;

 private:
  TermManager& d_tm;
  bool d_was_on;
};

// The variables free in each subterm of a walked term, as lists sorted by
// id. Subterms with equal sets share one list, so a deep term with few
// variables costs little.
class FreeVariableMap {
 public:
  FreeVariableMap() = default;
  FreeVariableMap(FreeVariableMap&&) = default;
  FreeVariableMap& operator=(FreeVariableMap&&) = default;

  // Requires: t is a subterm of the walked term.
  const TermList& get(const Term_* t) const;

  bool is_free_in(const Term_* var, const Term_* t) const;

  size_t size() const { return d_map.size(); }

 private:
  friend class FreeVariableVisitorCallback;

  hsh::HashMap<const Term_*, const TermList*> d_map;
  std::vector<std::unique_ptr<TermList>> d_sets;
};

}  // namespace zenlo

#endif
