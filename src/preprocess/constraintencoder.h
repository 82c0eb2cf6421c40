// Removes from a formula what the theory solvers do not take, before CNF
// conversion: each term whose tag has an encoder is replaced by a fresh
// constant (or a simpler term), and side constraints that define the
// replacement are conjoined to the formula.
//
// Encoders are function objects registered by symbol tag; the table is
// filled at construction from the options. Encodings are cached, so a term
// met again in a later assertion reuses its constant and adds no second
// definition, until reset() (which the environment calls at every pop,
// since the side constraints of a popped level are gone from the engine).
//
// All walks are iterative (TermVisitor), and side constraints are walked
// like the formula, so nested encodable terms of any depth are handled.
#ifndef ZENLO_PREPROCESS_CONSTRAINTENCODER_H
#define ZENLO_PREPROCESS_CONSTRAINTENCODER_H

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "terms/symboltag.h"
#include "terms/term.h"

namespace zenlo {

class RewriteStack;
class TermManager;
class Type;
class TerminationTest;

class ConstraintEncoder {
 public:
  ZENLO_DECLARE_ERROR;

  // The settings the environment gives (preprocessor and theory options).
  struct Options {
    bool interpolation_ite_elimination = false;
    bool term_ite_simplification = false;
    bool ite_minimization = false;
    int ite_minimization_call_limit = 150000;
    bool bv_div_by_zero_uf = false;     // theory.bv.div_by_zero_mode 1
    bool fp_minmax_zero_uf = false;     // theory.fp.minmax_zero_mode 4
    bool fp_to_bv_overflow_uf = false;  // theory.fp.to_bv_overflow_mode 1
    bool na_div_by_zero_uf = false;     // theory.na.div_by_zero_mode 1
    // Sign lemmas of nonlinear products, before the case splits.
    bool times_zero_line = false;
  };

  // One encoder, for the terms of one tag.
  class enc_fun {
   public:
    virtual ~enc_fun() = default;

    virtual SymbolTag::tag get_tag() const = 0;

    // - Returns: true when `t` is encoded: `replacement` stands for it,
    //   its defining constraints were appended to `side`, and the
    //   constants made for it to `added`.
    virtual bool operator()(TermManager& tm,
                            const Term_* t,
                            const Term_*& replacement,
                            TermList& side,
                            TermList& added) = 0;

    virtual void set_termination_test(TerminationTest* /*test*/) {}

    // Whether the side constraints use the encoded term itself, under a
    // guard (a division defined where its divisor is not 0): those must
    // keep it rather than see it replaced by its own constant.
    virtual bool defines_by_original() const { return false; }

   protected:
    // A constant named `name` (or the first free name after it) of type
    // `type`, appended to `added`.
    static const Term_* fresh(TermManager& tm,
                              const std::string& name,
                              const Type* type,
                              TermList& added);
  };

  // Tries encoders in turn until one encodes the term.
  class chain_enc : public enc_fun {
   public:
    chain_enc(SymbolTag::tag tag, std::vector<std::unique_ptr<enc_fun>> fs)
        : d_tag(tag), d_fs(std::move(fs)) {}

    SymbolTag::tag get_tag() const override { return d_tag; }

    bool operator()(TermManager& tm,
                    const Term_* t,
                    const Term_*& replacement,
                    TermList& side,
                    TermList& added) override;

    void set_termination_test(TerminationTest* test) override;

   private:
    SymbolTag::tag d_tag;
    std::vector<std::unique_ptr<enc_fun>> d_fs;
  };

  // - Requires: `tm` outlives the encoder; `rewrite_stack` may be null.
  ConstraintEncoder(TermManager* tm,
                    const Options& options,
                    RewriteStack* rewrite_stack);
  ~ConstraintEncoder();

  ConstraintEncoder(const ConstraintEncoder&) = delete;
  ConstraintEncoder& operator=(const ConstraintEncoder&) = delete;

  // - Returns: `f` with every encodable subterm replaced, conjoined with
  //   the side constraints of the encodings made by this call; `f` itself
  //   when there is nothing to encode.
  const Term_* operator()(const Term_* f);

  // - Returns: `t` with every encodable subterm replaced.
  // - After: the side constraints of the encodings made by this call are
  //   appended to `side_constraints`.
  const Term_* encode(const Term_* t, TermList& side_constraints);

  // Forgets all encodings: a term met again gets a new constant.
  void reset();

  // The constants made so far, in order.
  const TermList& get_added_constants() const { return d_added; }

  const Options& options() const { return d_options; }

  void set_termination_test(TerminationTest* test);

 private:
  class Walker;

  void register_encoder(std::unique_ptr<enc_fun> e);

  TermManager* d_tm;
  Options d_options;
  RewriteStack* d_rewrite_stack;
  TerminationTest* d_termination = nullptr;
  std::array<enc_fun*, SymbolTag::num_tags> d_table{};
  std::vector<std::unique_ptr<enc_fun>> d_encoders;
  TermMap d_encoded;
  TermList d_added;
  // The interpolation classifier, told of each new constant, slots in
  // here once interpolation exists.
};

// Term if-then-else: (ite c a b) becomes a fresh constant v with
// c -> v = a and !c -> v = b.
class TermIteEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::ITE; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

}  // namespace zenlo

#endif
