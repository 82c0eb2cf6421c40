// Models of the C interface: values, model handles and iterators, and the
// enumeration of diverse models.
//
// A zenlo_model is a ModelStore with one reference of its own; a
// zenlo_model_iterator is a heap record with a position and an end in the
// store's pairs, holding a reference too (none for the iterators that a
// diversification callback sees, which live for the call only).
#include <vector>

#include "api/capi.h"
#include "api/capi_terms.h"
#include "env/environment.h"
#include "preprocess/modelstore.h"

using namespace zenlo;

namespace {

struct IteratorRecord {
  ModelStore* store;  // null when the iterator does not own a reference
  const ModelStore::Assignment* pos;
  const ModelStore::Assignment* end;
};

IteratorRecord* iterator_of(zenlo_model_iterator it) {
  return static_cast<IteratorRecord*>(it.repr);
}

ModelStore* model_of(zenlo_model m) {
  if (m.repr == nullptr) {
    throw capi::invalid_handle("model");
  }
  return static_cast<ModelStore*>(m.repr);
}

// Requires: `store` carries a reference that the iterator takes over.
zenlo_model_iterator make_iterator(ModelStore* store) {
  try {
    const std::vector<ModelStore::Assignment>& pairs = store->assignments();
    zenlo_model_iterator it;
    it.repr =
        new IteratorRecord{store, pairs.data(), pairs.data() + pairs.size()};
    return it;
  } catch (...) {
    ModelStore::release(store);
    throw;
  }
}

// Calls the C callback with an iterator over the model.
class CModelFoundHook : public ModelFoundHook {
 public:
  CModelFoundHook(zenlo_model_found_callback callback, void* user_data)
      : d_callback(callback), d_user_data(user_data) {}

  bool operator()(const Assignment* begin, const Assignment* end) override {
    if (d_callback == nullptr) {
      return true;
    }
    IteratorRecord rec{nullptr, begin, end};
    zenlo_model_iterator it;
    it.repr = &rec;
    return d_callback(it, d_user_data) != 0;
  }

 private:
  zenlo_model_found_callback d_callback;
  void* d_user_data;
};

}  // namespace

extern "C" {

// ---------------------------------------------------------------------------
// Values of the current model
// ---------------------------------------------------------------------------

zenlo_term zenlo_get_model_value(zenlo_env e, zenlo_term t) {
  return capi::guarded(e, capi::error_term(), [&](capi::EnvRecord& r) {
    return capi::wrap(r.env->get_model_value(capi::term_of(t)));
  });
}

zenlo_model_iterator zenlo_create_model_iterator(zenlo_env e) {
  return capi::guarded(
      e, zenlo_model_iterator{nullptr}, [&](capi::EnvRecord& r) {
        return make_iterator(r.env->get_model(false));
      });
}

// ---------------------------------------------------------------------------
// Iterators
// ---------------------------------------------------------------------------

int zenlo_model_iterator_has_next(zenlo_model_iterator it) {
  IteratorRecord* rec = iterator_of(it);
  return rec != nullptr && rec->pos != rec->end ? 1 : 0;
}

int zenlo_model_iterator_next(zenlo_model_iterator it,
                              zenlo_term* term,
                              zenlo_term* value) {
  IteratorRecord* rec = iterator_of(it);
  if (rec == nullptr || rec->pos == rec->end || term == nullptr
      || value == nullptr) {
    return -1;
  }
  *term = capi::wrap(rec->pos->first);
  *value = capi::wrap(rec->pos->second);
  ++rec->pos;
  return 0;
}

void zenlo_destroy_model_iterator(zenlo_model_iterator it) {
  IteratorRecord* rec = iterator_of(it);
  if (rec != nullptr) {
    ModelStore::release(rec->store);
    delete rec;
  }
}

// ---------------------------------------------------------------------------
// Model handles
// ---------------------------------------------------------------------------

zenlo_model zenlo_get_model(zenlo_env e) {
  return capi::guarded(e, zenlo_model{nullptr}, [&](capi::EnvRecord& r) {
    zenlo_model m;
    m.repr = r.env->get_model();
    return m;
  });
}

void zenlo_destroy_model(zenlo_model m) {
  ModelStore::release(static_cast<ModelStore*>(m.repr));
}

zenlo_term zenlo_model_eval(zenlo_model m, zenlo_term t) {
  return capi::guarded_noenv(capi::error_term(), [&] {
    return capi::wrap(model_of(m)->get_value(capi::term_of(t)));
  });
}

zenlo_model_iterator zenlo_model_create_iterator(zenlo_model m) {
  return capi::guarded_noenv(zenlo_model_iterator{nullptr}, [&] {
    ModelStore* store = model_of(m);
    store->acquire();
    return make_iterator(store);
  });
}

// ---------------------------------------------------------------------------
// Diversification
// ---------------------------------------------------------------------------

int zenlo_solve_diversify(zenlo_env e,
                          zenlo_term* diversifiers,
                          size_t n,
                          zenlo_model_found_callback callback,
                          void* user_data) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    TermList ds = capi::terms_of(diversifiers, n, "diversifiers");
    CModelFoundHook hook(callback, user_data);
    return static_cast<int>(r.env->diversify(hook, ds));
  });
}

}  // extern "C"
