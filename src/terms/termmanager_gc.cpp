// Collection: everything not reachable from the roots goes, in the order
// that keeps every table consistent at each step: mark, prune the memo
// tables, free the terms, retire the symbols, delete the types.
#include <vector>

#include "terms/termmanager.h"
#include "terms/termvisitor.h"

namespace zenlo {

namespace {

// Marks every reached term by id; a term marked by an earlier root is not
// descended into again.
class GcMarkCallback : public TermVisitorCallback {
 public:
  GcMarkCallback(BitSet& marked, std::vector<const Symbol*>& symbols)
      : d_marked(marked), d_symbols(symbols) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (!preorder) {
      return VisitResult::Process;
    }
    if (d_marked.get(t->get_id())) {
      return VisitResult::Skip;
    }
    d_marked.set(t->get_id());
    d_symbols.push_back(t->get_symbol());
    return VisitResult::Process;
  }

 private:
  BitSet& d_marked;
  std::vector<const Symbol*>& d_symbols;
};

}  // namespace

void TermManager::gc_insert_tps(const Type* t, TypeSet& kept_types) {
  // Types nest only as deep as they were written, but an explicit stack
  // costs nothing here.
  std::vector<const Type*> stack(1, t);
  while (!stack.empty()) {
    const Type* u = stack.back();
    stack.pop_back();
    if (kept_types.insert(u).second) {
      for (const Type* c : u->get_components()) {
        stack.push_back(c);
      }
    }
  }
}

void TermManager::gc_keep_sym(const Symbol* s,
                              SymbolSet& kept_syms,
                              TypeSet& kept_types) {
  if (kept_syms.insert(s).second) {
    gc_insert_tps(s->get_type(), kept_types);
  }
}

void TermManager::gc_mark_terms(const TermList& roots,
                                BitSet& marked,
                                SymbolSet& kept_syms,
                                TypeSet& kept_types) {
  std::vector<const Symbol*> reached;
  GcMarkCallback cb(marked, reached);
  TermVisitor<GcMarkCallback> visitor(*this, cb);
  for (const Term_* t : roots) {
    visitor.visit(t);
  }
  for (const Symbol* s : reached) {
    gc_keep_sym(s, kept_syms, kept_types);
  }
}

void TermManager::gc_prune_tables(const BitSet& marked,
                                  const SymbolSet& kept_syms,
                                  const TypeSet& kept_types) {
  auto dead_type = [&](const Type* t) { return !kept_types.contains(t); };
  auto dead_sym = [&](const Symbol* s) { return !kept_syms.contains(s); };
  d_bv_types.erase_if([&](const auto& e) { return dead_type(e.second); });
  d_bv_widths.erase_if([&](const auto& e) { return dead_type(e.first); });
  d_fp_types.erase_if([&](const auto& e) { return dead_type(e.second); });
  d_fp_formats.erase_if([&](const auto& e) { return dead_type(e.first); });
  d_enum_values.erase_if([&](const auto& e) { return dead_type(e.first); });
  d_enum_of_value.erase_if([&](const auto& e) { return dead_sym(e.first); });
  gc_families(kept_syms);
  d_number_values.erase_if([&](const auto& e) { return dead_sym(e.first); });
  d_rational_terms.erase_if(
      [&](const auto& e) { return !marked.get(e.second->get_id()); });
}

void TermManager::gc(const TermList& root_terms,
                     const std::vector<const Symbol*>& root_symbols,
                     const std::vector<const Type*>& root_types) {
  TypeSet kept_types;
  SymbolSet kept_syms;
  const Type* base[] = {d_bool_type,
                        d_real_type,
                        d_int_type,
                        d_array_marker,
                        d_bv_marker,
                        d_fprounding_type,
                        d_fp_marker,
                        d_universe.get_application_type()};
  for (const Type* t : base) {
    gc_insert_tps(t, kept_types);
  }
  for (const Symbol* s : d_standard) {
    gc_keep_sym(s, kept_syms, kept_types);
  }
  BitSet marked;
  marked.set(d_true->get_id());
  marked.set(d_false->get_id());
  gc_mark_terms(root_terms, marked, kept_syms, kept_types);
  for (const Symbol* s : root_symbols) {
    gc_keep_sym(s, kept_syms, kept_types);
  }
  for (const Type* t : root_types) {
    gc_insert_tps(t, kept_types);
  }
  // An enum type is only whole with its values.
  for (const auto& e : d_enum_values) {
    if (kept_types.contains(e.first)) {
      for (const Symbol* v : e.second) {
        gc_keep_sym(v, kept_syms, kept_types);
      }
    }
  }
  gc_prune_tables(marked, kept_syms, kept_types);
  // Pointers and ids of dead terms are reused from here on: a simplifier's
  // memo of them would answer for the wrong terms.
  if (d_simplifier != nullptr) {
    d_simplifier->clear_cache();
  }
  d_bank.remove_unseen(marked);
  d_signature.gc(kept_syms);
  d_universe.gc(kept_types);
}

}  // namespace zenlo
