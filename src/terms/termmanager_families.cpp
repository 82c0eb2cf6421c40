// Parametric symbols: made on first use, memoised in both directions. The
// stored name spells the family and its parameters, the type follows from
// them; everything else about a family is its tag.
#include <string>

#include "terms/termmanager.h"

namespace zenlo {

namespace {

// The name of the family before its parameters.
const char* family_base(SymbolTag::tag tag) {
  using T = SymbolTag;
  switch (tag) {
    case T::EQ: return "=";
    case T::ITE: return "ite";
    case T::FORALL: return "forall";
    case T::EXISTS: return "exists";
    case T::ARRAY_READ: return "read";
    case T::ARRAY_WRITE: return "write";
    case T::ARRAY_CONST: return "const";
    case T::BV_NOT: return "bvnot";
    case T::BV_NEG: return "bvneg";
    case T::BV_AND: return "bvand";
    case T::BV_OR: return "bvor";
    case T::BV_XOR: return "bvxor";
    case T::BV_ADD: return "bvadd";
    case T::BV_SUB: return "bvsub";
    case T::BV_MUL: return "bvmul";
    case T::BV_UDIV: return "bvudiv";
    case T::BV_SDIV: return "bvsdiv";
    case T::BV_UREM: return "bvurem";
    case T::BV_SREM: return "bvsrem";
    case T::BV_LSHL: return "bvlshl";
    case T::BV_LSHR: return "bvlshr";
    case T::BV_ASHR: return "bvashr";
    case T::BV_ULT: return "bvult";
    case T::BV_ULE: return "bvule";
    case T::BV_SLT: return "bvslt";
    case T::BV_SLE: return "bvsle";
    case T::BV_COMP: return "bvcomp";
    case T::BV_ROL: return "bvrol";
    case T::BV_ROR: return "bvror";
    case T::BV_ZEXT: return "bvzext";
    case T::BV_SEXT: return "bvsext";
    case T::BV_CONCAT: return "bvconcat";
    case T::BV_EXTRACT: return "bvextract";
    case T::INT_TO_BV: return "int2bv";
    case T::INT_FROM_SBV: return "sbv2int";
    case T::INT_FROM_UBV: return "ubv2int";
    case T::FP_EQ: return "fpeq";
    case T::FP_LT: return "fplt";
    case T::FP_LE: return "fple";
    case T::FP_ISNAN: return "fpisnan";
    case T::FP_ISINF: return "fpisinf";
    case T::FP_ISZERO: return "fpiszero";
    case T::FP_ISSUBNORMAL: return "fpissubnormal";
    case T::FP_ISNORMAL: return "fpisnormal";
    case T::FP_ISNEG: return "fpisneg";
    case T::FP_ISPOS: return "fpispos";
    case T::FP_ADD: return "fpadd";
    case T::FP_SUB: return "fpsub";
    case T::FP_MUL: return "fpmul";
    case T::FP_DIV: return "fpdiv";
    case T::FP_MIN: return "fpmin";
    case T::FP_MAX: return "fpmax";
    case T::FP_NEG: return "fpneg";
    case T::FP_ABS: return "fpabs";
    case T::FP_SQRT: return "fpsqrt";
    case T::FP_ROUND_TO_INT: return "fproundtoint";
    case T::FP_CAST: return "fpcast";
    case T::FP_FROM_SBV: return "fpfromsbv";
    case T::FP_FROM_UBV: return "fpfromubv";
    case T::FP_TO_SBV: return "fptosbv";
    case T::FP_TO_UBV: return "fptoubv";
    case T::FP_AS_IEEEBV: return "fpasbv";
    case T::FP_FROM_IEEEBV: return "fpfromieeebv";
    default: return nullptr;
  }
}

// How many numeric parameters a family's name spells; the type families
// spell types instead and answer 0.
int family_arity(SymbolTag::tag tag) {
  using T = SymbolTag;
  switch (tag) {
    case T::EQ:
    case T::ITE:
    case T::FORALL:
    case T::EXISTS:
    case T::ARRAY_READ:
    case T::ARRAY_WRITE:
    case T::ARRAY_CONST: return 0;
    case T::BV_ROL:
    case T::BV_ROR:
    case T::BV_ZEXT:
    case T::BV_SEXT:
    case T::BV_CONCAT: return 2;
    case T::BV_EXTRACT:
    case T::FP_FROM_SBV:
    case T::FP_FROM_UBV:
    case T::FP_TO_SBV:
    case T::FP_TO_UBV: return 3;
    case T::FP_CAST: return 4;
    default: break;
  }
  return tag >= T::FP_EQ && tag <= T::FP_FROM_IEEEBV ? 2 : 1;
}

}  // namespace

std::string TermManager::type_name_part(const Type* t) const {
  if (t == d_real_type) {
    return "rat";
  }
  if (t == d_int_type) {
    return "int";
  }
  return t->to_str();
}

std::string TermManager::family_name(SymbolTag::tag tag,
                                     const FamilyKey& k) const {
  std::string name = family_base(tag);
  int arity = family_arity(tag);
  if (arity == 0) {
    name += "_" + type_name_part(k.t1);
    if (k.t2 != nullptr) {
      name += "_" + type_name_part(k.t2);
    }
    return name;
  }
  for (int i = 0; i < arity; ++i) {
    name += "_" + std::to_string(k.n[i]);
  }
  if (tag == SymbolTag::FP_AS_IEEEBV) {
    name += "_" + std::to_string(k.n[0] + k.n[1] + 1);
  } else if (tag == SymbolTag::FP_FROM_IEEEBV) {
    // The width comes first here: the name reads "from width to format".
    name = std::string(family_base(tag)) + "_"
           + std::to_string(k.n[0] + k.n[1] + 1) + "_" + std::to_string(k.n[0])
           + "_" + std::to_string(k.n[1]);
  }
  return name;
}

const Type* TermManager::family_signature(SymbolTag::tag tag,
                                          const FamilyKey& k) {
  using T = SymbolTag;
  const Type* b = d_bool_type;
  auto fn = [this](std::vector<const Type*> args, const Type* ret) {
    return function_type_unchecked(args, ret);
  };
  auto array = [&]() {
    return d_universe.make_type({d_array_marker, k.t1, k.t2});
  };
  const size_t* n = k.n;
  switch (tag) {
    case T::EQ: return fn({k.t1, k.t1}, b);
    case T::ITE: return fn({b, k.t1, k.t1}, k.t1);
    case T::FORALL:
    case T::EXISTS: return fn({k.t1, b}, b);
    case T::ARRAY_READ: return fn({array(), k.t1}, k.t2);
    case T::ARRAY_WRITE: return fn({array(), k.t1, k.t2}, array());
    case T::ARRAY_CONST: return fn({k.t2}, array());
    case T::BV_NOT:
    case T::BV_NEG: return fn({get_bv_type(n[0])}, get_bv_type(n[0]));
    case T::BV_ULT:
    case T::BV_ULE:
    case T::BV_SLT:
    case T::BV_SLE: {
      const Type* bv = get_bv_type(n[0]);
      return fn({bv, bv}, b);
    }
    case T::BV_COMP: {
      const Type* bv = get_bv_type(n[0]);
      return fn({bv, bv}, get_bv_type(1));
    }
    case T::BV_ROL:
    case T::BV_ROR: return fn({get_bv_type(n[1])}, get_bv_type(n[1]));
    case T::BV_ZEXT:
    case T::BV_SEXT: return fn({get_bv_type(n[1])}, get_bv_type(n[0] + n[1]));
    case T::BV_CONCAT:
      return fn({get_bv_type(n[0]), get_bv_type(n[1])},
                get_bv_type(n[0] + n[1]));
    case T::BV_EXTRACT:
      return fn({get_bv_type(n[2])}, get_bv_type(n[0] - n[1] + 1));
    case T::INT_TO_BV: return fn({d_int_type}, get_bv_type(n[0]));
    case T::INT_FROM_SBV:
    case T::INT_FROM_UBV: return fn({get_bv_type(n[0])}, d_int_type);
    default: break;
  }
  if (tag >= T::BV_AND && tag <= T::BV_ASHR) {
    const Type* bv = get_bv_type(n[0]);
    return fn({bv, bv}, bv);
  }
  return fp_family_signature(tag, k);
}

const Type* TermManager::fp_family_signature(SymbolTag::tag tag,
                                             const FamilyKey& k) {
  using T = SymbolTag;
  const Type* b = d_bool_type;
  const Type* rm = d_fprounding_type;
  auto fn = [this](std::vector<const Type*> args, const Type* ret) {
    return function_type_unchecked(args, ret);
  };
  const size_t* n = k.n;
  switch (tag) {
    case T::FP_CAST:
      return fn({rm, get_fp_type(n[0], n[1])}, get_fp_type(n[2], n[3]));
    case T::FP_FROM_SBV:
    case T::FP_FROM_UBV:
      return fn({rm, get_bv_type(n[0])}, get_fp_type(n[1], n[2]));
    case T::FP_TO_SBV:
    case T::FP_TO_UBV:
      return fn({rm, get_fp_type(n[0], n[1])}, get_bv_type(n[2]));
    case T::FP_AS_IEEEBV:
      return fn({get_fp_type(n[0], n[1])}, get_bv_type(n[0] + n[1] + 1));
    case T::FP_FROM_IEEEBV:
      return fn({get_bv_type(n[0] + n[1] + 1)}, get_fp_type(n[0], n[1]));
    default: break;
  }
  const Type* fp = get_fp_type(n[0], n[1]);
  switch (tag) {
    case T::FP_EQ:
    case T::FP_LT:
    case T::FP_LE: return fn({fp, fp}, b);
    case T::FP_NEG:
    case T::FP_ABS: return fn({fp}, fp);
    case T::FP_ADD:
    case T::FP_SUB:
    case T::FP_MUL:
    case T::FP_DIV: return fn({rm, fp, fp}, fp);
    case T::FP_SQRT:
    case T::FP_ROUND_TO_INT: return fn({rm, fp}, fp);
    case T::FP_MIN:
    case T::FP_MAX: return fn({fp, fp}, fp);
    default: return fn({fp}, b);  // the classification predicates
  }
}

const Symbol* TermManager::create_family_symbol(SymbolTag::tag tag,
                                                const FamilyKey& key) {
  if (family_base(tag) == nullptr) {
    throw error(SymbolTag::to_str(tag) + " is not a parametric family");
  }
  const Type* type = family_signature(tag, key);
  return add_interpreted_symbol(family_name(tag, key), type, tag);
}

const Symbol* TermManager::create_congruence_symbol(const QNumber& modulus) {
  if (!modulus.is_integer() || modulus.sign() <= 0) {
    throw error("the modulus of a congruence must be a positive integer: "
                + modulus.to_str());
  }
  const Type* type =
      function_type_unchecked({d_int_type, d_int_type}, d_bool_type);
  return add_interpreted_symbol(
      "int_mod_congr_" + modulus.to_str(), type, SymbolTag::INT_MOD_CONGR);
}

}  // namespace zenlo
