/*
 * Zenlo: the C interface of the SMT solver.
 *
 * Objects are passed as small records holding one pointer, `repr`. A record
 * whose `repr` is NULL is the error value of its type; test it with the
 * ZENLO_ERROR_ macros. Functions returning int answer 0 on success and -1 on
 * failure unless said otherwise; after a failure of a function that takes an
 * environment, zenlo_last_error_message() tells why.
 *
 * Terms, types and declarations belong to the environment's term store and
 * are never freed by the caller. Arrays and strings returned by the
 * interface are released with zenlo_free().
 */
#ifndef ZENLO_H_INCLUDED
#define ZENLO_H_INCLUDED

#include <gmp.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#if defined(ZENLO_BUILDING_LIBRARY)
#define ZENLO_API __attribute__((visibility("default")))
#else
#define ZENLO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Handles and enumerations
 * ---------------------------------------------------------------------- */

#define ZENLO_DECLARE_HANDLE(name) \
  typedef struct {                 \
    void* repr;                    \
  } name

ZENLO_DECLARE_HANDLE(zenlo_config);
ZENLO_DECLARE_HANDLE(zenlo_env);
ZENLO_DECLARE_HANDLE(zenlo_term);
ZENLO_DECLARE_HANDLE(zenlo_decl);
ZENLO_DECLARE_HANDLE(zenlo_type);
ZENLO_DECLARE_HANDLE(zenlo_model);
ZENLO_DECLARE_HANDLE(zenlo_model_iterator);

#define ZENLO_ERROR_CONFIG(x) ((x).repr == NULL)
#define ZENLO_ERROR_ENV(x) ((x).repr == NULL)
#define ZENLO_ERROR_TERM(x) ((x).repr == NULL)
#define ZENLO_ERROR_DECL(x) ((x).repr == NULL)
#define ZENLO_ERROR_TYPE(x) ((x).repr == NULL)
#define ZENLO_ERROR_MODEL(x) ((x).repr == NULL)
#define ZENLO_ERROR_MODEL_ITERATOR(x) ((x).repr == NULL)
#define ZENLO_MAKE_ERROR_TERM(x) ((x).repr = NULL)

typedef enum {
  ZENLO_UNKNOWN = -1,
  ZENLO_UNSAT = 0,
  ZENLO_SAT = 1
} zenlo_result;

typedef enum {
  ZENLO_UNDEF = -1,
  ZENLO_FALSE = 0,
  ZENLO_TRUE = 1
} zenlo_truth_value;

/* Answers of a zenlo_visit_term callback. */
typedef enum {
  ZENLO_VISIT_PROCESS = 0, /* walk the children */
  ZENLO_VISIT_SKIP = 1,    /* do not walk the children */
  ZENLO_VISIT_ABORT = 2    /* stop the whole walk */
} zenlo_visit_status;

typedef int (*zenlo_visit_term_callback)(zenlo_env e,
                                         zenlo_term t,
                                         int preorder,
                                         void* user_data);

/* Called during a check; a nonzero answer stops the search. */
typedef int (*zenlo_termination_test)(void* user_data);

/* ------------------------------------------------------------------------
 * Version and memory
 * ---------------------------------------------------------------------- */

ZENLO_API void zenlo_free(void* mem);
ZENLO_API char* zenlo_get_version(void);
ZENLO_API const char* zenlo_get_version_id(void);
ZENLO_API const char* zenlo_last_error_message(zenlo_env e);

/* ------------------------------------------------------------------------
 * Configuration
 * ---------------------------------------------------------------------- */

ZENLO_API zenlo_config zenlo_create_config(void);
ZENLO_API zenlo_config zenlo_create_default_config(const char* logic);
ZENLO_API zenlo_config zenlo_parse_config(const char* data);
ZENLO_API zenlo_config zenlo_parse_config_file(FILE* f);
ZENLO_API void zenlo_destroy_config(zenlo_config cfg);
ZENLO_API int zenlo_set_option(zenlo_config cfg,
                               const char* option,
                               const char* value);

/* ------------------------------------------------------------------------
 * Environment
 * ---------------------------------------------------------------------- */

ZENLO_API zenlo_env zenlo_create_env(zenlo_config cfg);
ZENLO_API zenlo_env zenlo_create_shared_env(zenlo_config cfg,
                                            zenlo_env sibling);
ZENLO_API void zenlo_destroy_env(zenlo_env e);
ZENLO_API int zenlo_reset_env(zenlo_env e);
ZENLO_API int zenlo_gc_env(zenlo_env e, zenlo_term* tokeep, size_t num);
ZENLO_API int zenlo_set_termination_test(zenlo_env e,
                                         zenlo_termination_test func,
                                         void* user_data);

/* ------------------------------------------------------------------------
 * Types
 * ---------------------------------------------------------------------- */

ZENLO_API zenlo_type zenlo_get_bool_type(zenlo_env e);
ZENLO_API zenlo_type zenlo_get_rational_type(zenlo_env e);
ZENLO_API zenlo_type zenlo_get_integer_type(zenlo_env e);
ZENLO_API zenlo_type zenlo_get_bv_type(zenlo_env e, size_t width);
ZENLO_API zenlo_type zenlo_get_array_type(zenlo_env e,
                                          zenlo_type itp,
                                          zenlo_type etp);
ZENLO_API zenlo_type zenlo_get_fp_type(zenlo_env e,
                                       size_t exp_w,
                                       size_t mant_w);
ZENLO_API zenlo_type zenlo_get_fp_roundingmode_type(zenlo_env e);
ZENLO_API zenlo_type zenlo_get_simple_type(zenlo_env e, const char* name);
ZENLO_API zenlo_type zenlo_get_function_type(zenlo_env e,
                                             zenlo_type* param_types,
                                             size_t num_params,
                                             zenlo_type return_type);
/* An enumerated type of `num_values` distinct constants; the constants are
 * stored in `values_out` when it is not NULL. */
ZENLO_API zenlo_type zenlo_get_enum_type(zenlo_env e,
                                         const char* name,
                                         size_t num_values,
                                         const char** values,
                                         zenlo_decl* values_out);

ZENLO_API int zenlo_is_bool_type(zenlo_env e, zenlo_type t);
ZENLO_API int zenlo_is_rational_type(zenlo_env e, zenlo_type t);
ZENLO_API int zenlo_is_integer_type(zenlo_env e, zenlo_type t);
/* The out-parameters may be NULL. */
ZENLO_API int zenlo_is_bv_type(zenlo_env e, zenlo_type t, size_t* out_width);
ZENLO_API int zenlo_is_array_type(zenlo_env e,
                                  zenlo_type t,
                                  zenlo_type* out_itp,
                                  zenlo_type* out_etp);
ZENLO_API int zenlo_is_fp_type(zenlo_env e,
                               zenlo_type t,
                               size_t* out_exp_w,
                               size_t* out_mant_w);
ZENLO_API int zenlo_is_fp_roundingmode_type(zenlo_env e, zenlo_type t);
ZENLO_API int zenlo_is_enum_type(zenlo_env e, zenlo_type t);
ZENLO_API int zenlo_type_equals(zenlo_type t1, zenlo_type t2);
ZENLO_API size_t zenlo_type_id(zenlo_type t);
ZENLO_API char* zenlo_type_repr(zenlo_type t);

/* ------------------------------------------------------------------------
 * Declarations
 * ---------------------------------------------------------------------- */

ZENLO_API zenlo_decl zenlo_declare_function(zenlo_env e,
                                            const char* name,
                                            zenlo_type t);
ZENLO_API zenlo_decl zenlo_find_decl(zenlo_env e, const char* name);
ZENLO_API size_t zenlo_decl_id(zenlo_decl d);
ZENLO_API int zenlo_decl_get_tag(zenlo_env e, zenlo_decl d);
ZENLO_API size_t zenlo_decl_get_arity(zenlo_decl d);
ZENLO_API zenlo_type zenlo_decl_get_arg_type(zenlo_decl d, size_t i);
ZENLO_API zenlo_type zenlo_decl_get_return_type(zenlo_decl d);
ZENLO_API char* zenlo_decl_get_name(zenlo_decl d);
ZENLO_API char* zenlo_decl_repr(zenlo_decl d);

/* ------------------------------------------------------------------------
 * Term construction
 * ---------------------------------------------------------------------- */

ZENLO_API zenlo_term zenlo_make_true(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_false(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_iff(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_or(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_and(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_not(zenlo_env e, zenlo_term t);
/* `iff` for Boolean arguments, `=` otherwise. */
ZENLO_API zenlo_term zenlo_make_eq(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_equal(zenlo_env e,
                                      zenlo_term t1,
                                      zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_leq(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_plus(zenlo_env e, zenlo_term t1, zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_times(zenlo_env e,
                                      zenlo_term t1,
                                      zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_divide(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_floor(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_pi(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_exp(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_sin(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_log(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_asin(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_pow(zenlo_env e, zenlo_term t1, zenlo_term t2);
/* A rational number in decimal, fractional ("n/d") or exponent form. */
ZENLO_API zenlo_term zenlo_make_number(zenlo_env e, const char* num_rep);
ZENLO_API zenlo_term zenlo_make_int_number(zenlo_env e, int value);
ZENLO_API zenlo_term zenlo_make_mpq_number(zenlo_env e, mpq_t value);
ZENLO_API zenlo_term zenlo_make_term_ite(zenlo_env e,
                                         zenlo_term c,
                                         zenlo_term tt,
                                         zenlo_term te);
ZENLO_API zenlo_term zenlo_make_constant(zenlo_env e, zenlo_decl var);
/* An application of an uninterpreted function; `args` holds as many terms
 * as the declaration's arity. */
ZENLO_API zenlo_term zenlo_make_uf(zenlo_env e,
                                   zenlo_decl func,
                                   zenlo_term args[]);
/* An application of any declaration, interpreted or not. */
ZENLO_API zenlo_term zenlo_make_term(zenlo_env e,
                                     zenlo_decl d,
                                     zenlo_term args[]);

ZENLO_API zenlo_term zenlo_make_array_read(zenlo_env e,
                                           zenlo_term arr,
                                           zenlo_term idx);
ZENLO_API zenlo_term zenlo_make_array_write(zenlo_env e,
                                            zenlo_term arr,
                                            zenlo_term idx,
                                            zenlo_term elem);
ZENLO_API zenlo_term zenlo_make_array_const(zenlo_env e,
                                            zenlo_type arrtp,
                                            zenlo_term elem);

ZENLO_API zenlo_term zenlo_make_int_modular_congruence(zenlo_env e,
                                                       mpz_t modulus,
                                                       zenlo_term t1,
                                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_int_to_bv(zenlo_env e,
                                          size_t out_width,
                                          zenlo_term t);
ZENLO_API zenlo_term zenlo_make_int_from_ubv(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_int_from_sbv(zenlo_env e, zenlo_term t);

/* A bit-vector constant from digits in base 2, 10 or 16. */
ZENLO_API zenlo_term zenlo_make_bv_number(zenlo_env e,
                                          const char* num_rep,
                                          size_t width,
                                          size_t base);
ZENLO_API zenlo_term zenlo_make_bv_int_number(zenlo_env e,
                                              int value,
                                              size_t width);
ZENLO_API zenlo_term zenlo_make_bv_mpz_number(zenlo_env e,
                                              mpz_t value,
                                              size_t width);
ZENLO_API zenlo_term zenlo_make_bv_concat(zenlo_env e,
                                          zenlo_term t1,
                                          zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_extract(zenlo_env e,
                                           size_t msb,
                                           size_t lsb,
                                           zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_not(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_and(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_or(zenlo_env e,
                                      zenlo_term t1,
                                      zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_xor(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_ult(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_uleq(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_slt(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_sleq(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_comp(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_neg(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_plus(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_minus(zenlo_env e,
                                         zenlo_term t1,
                                         zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_times(zenlo_env e,
                                         zenlo_term t1,
                                         zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_udiv(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_urem(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_sdiv(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_srem(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_lshl(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_lshr(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_ashr(zenlo_env e,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_bv_rol(zenlo_env e,
                                       size_t amount,
                                       zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_ror(zenlo_env e,
                                       size_t amount,
                                       zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_zext(zenlo_env e,
                                        size_t amount,
                                        zenlo_term t);
ZENLO_API zenlo_term zenlo_make_bv_sext(zenlo_env e,
                                        size_t amount,
                                        zenlo_term t);

ZENLO_API zenlo_term zenlo_make_fp_roundingmode_nearest_even(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_fp_roundingmode_zero(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_fp_roundingmode_plus_inf(zenlo_env e);
ZENLO_API zenlo_term zenlo_make_fp_roundingmode_minus_inf(zenlo_env e);
/* A floating-point constant from a rational, rounded by `rounding`. */
ZENLO_API zenlo_term zenlo_make_fp_rat_number(zenlo_env e,
                                              const char* num_rep,
                                              size_t exp_w,
                                              size_t mant_w,
                                              zenlo_term rounding);
/* A floating-point constant from its IEEE bit pattern, in decimal. */
ZENLO_API zenlo_term zenlo_make_fp_bits_number(zenlo_env e,
                                               const char* bits_rep,
                                               size_t exp_w,
                                               size_t mant_w);
ZENLO_API zenlo_term zenlo_make_fp_plus_inf(zenlo_env e,
                                            size_t exp_w,
                                            size_t mant_w);
ZENLO_API zenlo_term zenlo_make_fp_minus_inf(zenlo_env e,
                                             size_t exp_w,
                                             size_t mant_w);
ZENLO_API zenlo_term zenlo_make_fp_nan(zenlo_env e,
                                       size_t exp_w,
                                       size_t mant_w);
ZENLO_API zenlo_term zenlo_make_fp_equal(zenlo_env e,
                                         zenlo_term t1,
                                         zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_lt(zenlo_env e,
                                      zenlo_term t1,
                                      zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_leq(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_neg(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_abs(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_plus(zenlo_env e,
                                        zenlo_term rounding,
                                        zenlo_term t1,
                                        zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_minus(zenlo_env e,
                                         zenlo_term rounding,
                                         zenlo_term t1,
                                         zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_times(zenlo_env e,
                                         zenlo_term rounding,
                                         zenlo_term t1,
                                         zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_div(zenlo_env e,
                                       zenlo_term rounding,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_sqrt(zenlo_env e,
                                        zenlo_term rounding,
                                        zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_min(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_max(zenlo_env e,
                                       zenlo_term t1,
                                       zenlo_term t2);
ZENLO_API zenlo_term zenlo_make_fp_round_to_int(zenlo_env e,
                                                zenlo_term rounding,
                                                zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_cast(zenlo_env e,
                                        size_t exp_w,
                                        size_t mant_w,
                                        zenlo_term rounding,
                                        zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_from_sbv(zenlo_env e,
                                            size_t exp_w,
                                            size_t mant_w,
                                            zenlo_term rounding,
                                            zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_from_ubv(zenlo_env e,
                                            size_t exp_w,
                                            size_t mant_w,
                                            zenlo_term rounding,
                                            zenlo_term t);
/* Rounding to a signed bit-vector (same as zenlo_make_fp_to_sbv). */
ZENLO_API zenlo_term zenlo_make_fp_to_bv(zenlo_env e,
                                         size_t width,
                                         zenlo_term rounding,
                                         zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_to_sbv(zenlo_env e,
                                          size_t width,
                                          zenlo_term rounding,
                                          zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_to_ubv(zenlo_env e,
                                          size_t width,
                                          zenlo_term rounding,
                                          zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_as_ieeebv(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_from_ieeebv(zenlo_env e,
                                               size_t exp_w,
                                               size_t mant_w,
                                               zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_isnan(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_isinf(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_iszero(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_issubnormal(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_isnormal(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_isneg(zenlo_env e, zenlo_term t);
ZENLO_API zenlo_term zenlo_make_fp_ispos(zenlo_env e, zenlo_term t);

/* A bound variable for the quantifiers. */
ZENLO_API zenlo_term zenlo_make_variable(zenlo_env e,
                                         const char* name,
                                         zenlo_type t);
ZENLO_API zenlo_term zenlo_make_forall(zenlo_env e,
                                       zenlo_term var,
                                       zenlo_term body);
ZENLO_API zenlo_term zenlo_make_exists(zenlo_env e,
                                       zenlo_term var,
                                       zenlo_term body);
/* Binds the constants `vars` existentially in `formula`, the first one
 * outermost. */
ZENLO_API zenlo_term zenlo_existentially_quantify(zenlo_env e,
                                                  zenlo_term formula,
                                                  zenlo_term vars[],
                                                  size_t n);
/* The term `t` of environment `src`, rebuilt in `dest`. */
ZENLO_API zenlo_term zenlo_make_copy_from(zenlo_env dest,
                                          zenlo_term t,
                                          zenlo_env src);

/* ------------------------------------------------------------------------
 * Term inspection
 * ---------------------------------------------------------------------- */

ZENLO_API size_t zenlo_term_id(zenlo_term t);
ZENLO_API size_t zenlo_term_arity(zenlo_term t);
ZENLO_API zenlo_term zenlo_term_get_arg(zenlo_term t, size_t n);
ZENLO_API zenlo_type zenlo_term_get_type(zenlo_term t);
ZENLO_API zenlo_decl zenlo_term_get_decl(zenlo_term t);
ZENLO_API char* zenlo_term_repr(zenlo_term t);
/* Stores the value of a number term in `out`; 0 or -1. */
ZENLO_API int zenlo_term_to_number(zenlo_env e, zenlo_term t, mpq_t out);

ZENLO_API int zenlo_term_is_true(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_false(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_boolean_constant(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_atom(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_number(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_and(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_or(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_not(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_iff(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_term_ite(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_constant(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_uf(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_equal(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_leq(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_plus(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_times(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_divide(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_floor(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_pi(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_exp(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_sin(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_log(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_pow(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_asin(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_array_read(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_array_write(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_array_const(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_enum_value(zenlo_env e, zenlo_term t);
/* The modulus of a congruence is stored in `out_mod` when it is not NULL. */
ZENLO_API int zenlo_term_is_int_modular_congruence(zenlo_env e,
                                                   zenlo_term t,
                                                   mpz_t out_mod);
ZENLO_API int zenlo_term_is_int_to_bv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_int_from_ubv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_int_from_sbv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_concat(zenlo_env e, zenlo_term t);
/* The index parameters are stored in the out-arguments when not NULL. */
ZENLO_API int zenlo_term_is_bv_extract(zenlo_env e,
                                       zenlo_term t,
                                       size_t* out_msb,
                                       size_t* out_lsb);
ZENLO_API int zenlo_term_is_bv_not(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_and(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_or(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_xor(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_ult(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_uleq(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_slt(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_sleq(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_comp(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_neg(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_plus(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_minus(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_times(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_udiv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_urem(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_sdiv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_srem(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_lshl(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_lshr(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_ashr(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_bv_rol(zenlo_env e,
                                   zenlo_term t,
                                   size_t* out_amount);
ZENLO_API int zenlo_term_is_bv_ror(zenlo_env e,
                                   zenlo_term t,
                                   size_t* out_amount);
ZENLO_API int zenlo_term_is_bv_zext(zenlo_env e,
                                    zenlo_term t,
                                    size_t* out_amount);
ZENLO_API int zenlo_term_is_bv_sext(zenlo_env e,
                                    zenlo_term t,
                                    size_t* out_amount);
ZENLO_API int zenlo_term_is_fp_roundingmode_nearest_even(zenlo_env e,
                                                         zenlo_term t);
ZENLO_API int zenlo_term_is_fp_roundingmode_zero(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_roundingmode_plus_inf(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_roundingmode_minus_inf(zenlo_env e,
                                                      zenlo_term t);
ZENLO_API int zenlo_term_is_fp_equal(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_lt(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_leq(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_neg(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_abs(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_plus(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_minus(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_times(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_div(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_sqrt(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_min(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_max(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_round_to_int(zenlo_env e, zenlo_term t);
/* Format parameters are stored in the out-arguments when not NULL. */
ZENLO_API int zenlo_term_is_fp_cast(zenlo_env e,
                                    zenlo_term t,
                                    size_t* out_exp_w,
                                    size_t* out_mant_w);
ZENLO_API int zenlo_term_is_fp_from_sbv(zenlo_env e,
                                        zenlo_term t,
                                        size_t* out_exp_w,
                                        size_t* out_mant_w);
ZENLO_API int zenlo_term_is_fp_from_ubv(zenlo_env e,
                                        zenlo_term t,
                                        size_t* out_exp_w,
                                        size_t* out_mant_w);
ZENLO_API int zenlo_term_is_fp_to_bv(zenlo_env e,
                                     zenlo_term t,
                                     size_t* out_width);
ZENLO_API int zenlo_term_is_fp_to_sbv(zenlo_env e,
                                      zenlo_term t,
                                      size_t* out_width);
ZENLO_API int zenlo_term_is_fp_to_ubv(zenlo_env e,
                                      zenlo_term t,
                                      size_t* out_width);
ZENLO_API int zenlo_term_is_fp_as_ieeebv(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_from_ieeebv(zenlo_env e,
                                           zenlo_term t,
                                           size_t* out_exp_w,
                                           size_t* out_mant_w);
ZENLO_API int zenlo_term_is_fp_isnan(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_isinf(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_iszero(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_issubnormal(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_isnormal(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_isneg(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_fp_ispos(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_variable(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_quantifier(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_forall(zenlo_env e, zenlo_term t);
ZENLO_API int zenlo_term_is_exists(zenlo_env e, zenlo_term t);

/* ------------------------------------------------------------------------
 * Term services
 * ---------------------------------------------------------------------- */

/* Walks `t` depth first, calling `func` before (preorder 1) and after
 * (preorder 0) the children of every subterm; shared subterms are visited
 * once. Returns 0, or -1 when the walk failed. */
ZENLO_API int zenlo_visit_term(zenlo_env e,
                               zenlo_term t,
                               zenlo_visit_term_callback func,
                               void* user_data);
/* Replaces every occurrence of `to_subst[i]` in `t` by `values[i]`. */
ZENLO_API zenlo_term zenlo_apply_substitution(zenlo_env e,
                                              zenlo_term t,
                                              size_t num_to_subst,
                                              zenlo_term* to_subst,
                                              zenlo_term* values);

/* ------------------------------------------------------------------------
 * Parsing and printing
 *
 * The readers take SMT-LIB 2 text over the environment's symbols: what a
 * script declares enters the environment, and symbols declared before
 * (through the interface or an earlier script) may be used without being
 * declared again. On bad text they fail with a message that ends with
 * " (line: N)". Queries in a script (check-sat, get-model, ...) are read
 * and ignored; push, pop and the objective commands are refused.
 *
 * Strings returned by the printers are released with zenlo_free. The
 * arrays of names and attribute strings returned by the readers are single
 * blocks: one zenlo_free releases an array with all of its strings.
 * ---------------------------------------------------------------------- */

/* The conjunction of the assertions of a script: the formula itself for
 * one assertion, `true` for none. */
ZENLO_API zenlo_term zenlo_from_smtlib2(zenlo_env e, const char* data);
ZENLO_API zenlo_term zenlo_from_smtlib2_file(zenlo_env e, FILE* f);
/* One term, such as "(and a (< x 3))", or else a whole script as
 * zenlo_from_smtlib2 reads it. */
ZENLO_API zenlo_term zenlo_from_string(zenlo_env e, const char* data);
/* SMT-LIB 1 is not supported yet: these fail with that message. */
ZENLO_API zenlo_term zenlo_from_smtlib1(zenlo_env e, const char* data);
ZENLO_API zenlo_term zenlo_from_smtlib1_file(zenlo_env e, FILE* f);

/* The terms a script names with :named, in the order of the script: *n
 * terms in *terms_out and their names in *names_out. Returns 0, or -1 with
 * nothing allocated. */
ZENLO_API int zenlo_named_list_from_smtlib2(zenlo_env e,
                                            const char* data,
                                            size_t* n,
                                            char*** names_out,
                                            zenlo_term** terms_out);
ZENLO_API int zenlo_named_list_from_smtlib2_file(
    zenlo_env e, FILE* f, size_t* n, char*** names_out, zenlo_term** terms_out);
/* A script asserting each formula under its name: (assert (! f :named n)).
 */
ZENLO_API char* zenlo_named_list_to_smtlib2(zenlo_env e,
                                            size_t n,
                                            char** names,
                                            zenlo_term* terms);
ZENLO_API int zenlo_named_list_to_smtlib2_file(
    zenlo_env e, size_t n, char** names, zenlo_term* terms, FILE* out);

/* The terms a script annotates with (! t :key value ...), by increasing
 * term id: *n terms in *terms_out; term i has (*counts_out)[i] attributes,
 * whose keys (with their colon) and values (source text, "" for none)
 * follow each other in *annots_out. Returns 0, or -1. */
ZENLO_API int zenlo_annotated_list_from_smtlib2(zenlo_env e,
                                                const char* data,
                                                size_t* n,
                                                zenlo_term** terms_out,
                                                size_t** counts_out,
                                                char*** annots_out);
ZENLO_API int zenlo_annotated_list_from_smtlib2_file(zenlo_env e,
                                                     FILE* f,
                                                     size_t* n,
                                                     zenlo_term** terms_out,
                                                     size_t** counts_out,
                                                     char*** annots_out);
/* A script asserting each formula with its attributes, given as above. */
ZENLO_API char* zenlo_annotated_list_to_smtlib2(
    zenlo_env e, size_t n, zenlo_term* terms, size_t* counts, char** annots);
ZENLO_API int zenlo_annotated_list_to_smtlib2_file(zenlo_env e,
                                                   size_t n,
                                                   zenlo_term* terms,
                                                   size_t* counts,
                                                   char** annots,
                                                   FILE* out);

/* A script asserting `formula`, with the declarations it needs and its
 * shared subterms defined once by let. */
ZENLO_API char* zenlo_to_smtlib2(zenlo_env e, zenlo_term formula);
ZENLO_API int zenlo_to_smtlib2_file(zenlo_env e, zenlo_term formula, FILE* out);
/* The same with a :named name for the formula and a logic for set-logic
 * (either may be NULL), and define-fun lines instead of let when
 * use_defines is nonzero. */
ZENLO_API char* zenlo_to_smtlib2_ext(zenlo_env e,
                                     zenlo_term formula,
                                     const char* name,
                                     const char* logic,
                                     int use_defines);
ZENLO_API int zenlo_to_smtlib2_ext_file(zenlo_env e,
                                        zenlo_term formula,
                                        const char* name,
                                        const char* logic,
                                        int use_defines,
                                        FILE* out);
/* One term on one line, shared subterms by let, no declarations. */
ZENLO_API char* zenlo_to_smtlib2_term(zenlo_env e, zenlo_term t);
ZENLO_API char* zenlo_to_smtlib1(zenlo_env e, zenlo_term formula);
ZENLO_API int zenlo_to_smtlib1_file(zenlo_env e, zenlo_term formula, FILE* out);

/* Nonzero: the SMT-LIB 2 and S-expression readers trace what they read
 * on standard error. */
ZENLO_API extern int zenlo_smtlib2_parser_debug;
ZENLO_API extern int zenlo_sexp_parser_debug;

/* ------------------------------------------------------------------------
 * Assert and solve
 * ---------------------------------------------------------------------- */

ZENLO_API int zenlo_assert_formula(zenlo_env e, zenlo_term formula);
ZENLO_API int zenlo_solve(zenlo_env e);

/* ------------------------------------------------------------------------
 * Command line
 * ---------------------------------------------------------------------- */

ZENLO_API int zenlo_main(int argc, const char** argv);

#ifdef __cplusplus
}
#endif

#endif /* ZENLO_H_INCLUDED */
