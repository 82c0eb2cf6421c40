// Parsing and printing of the C interface: SMT-LIB 2 text in and out.
#include <sstream>

#include "api/capi.h"
#include "api/capi_terms.h"
#include "frontend/smtlib2io.h"

using namespace zenlo;
using capi::EnvRecord;

namespace {

const char* const kNoSmtLib1 = "SMT-LIB 1 is not supported yet";

const Configuration::Printer* printer_config(EnvRecord& r) {
  return &r.env->get_config().printer;
}

int write_file(const std::string& text, std::FILE* out) {
  if (std::fwrite(text.data(), 1, text.size(), capi::file_of(out))
      != text.size()) {
    throw Exception("error writing the output file");
  }
  return 0;
}

std::vector<AttributeList> named_attributes(size_t n, char** names) {
  capi::array_of(names, n, "names");
  std::vector<AttributeList> attrs(n);
  for (size_t i = 0; i < n; ++i) {
    attrs[i].push_back({":named", quote_symbol(capi::string_of(names[i]))});
  }
  return attrs;
}

std::vector<AttributeList> annotation_lists(size_t n,
                                            const size_t* counts,
                                            char** annots) {
  capi::array_of(counts, n, "counts");
  capi::array_of(annots, n, "annots");
  std::vector<AttributeList> attrs(n);
  for (size_t i = 0, k = 0; i < n; ++i) {
    for (size_t j = 0; j < counts[i]; ++j, k += 2) {
      attrs[i].push_back(
          {capi::string_of(annots[k]), capi::string_of(annots[k + 1])});
    }
  }
  return attrs;
}

int named_list_from(EnvRecord& r,
                    std::istream& in,
                    size_t* n,
                    char*** names_out,
                    zenlo_term** terms_out) {
  if (n == nullptr || names_out == nullptr || terms_out == nullptr) {
    throw capi::invalid_handle("output");
  }
  std::vector<SmtLib2Parser::NamedTerm> named = read_smtlib2_named(r.tm(), in);
  std::vector<std::string> names;
  TermList terms;
  for (const SmtLib2Parser::NamedTerm& nt : named) {
    names.push_back(nt.name);
    terms.push_back(nt.term);
  }
  zenlo_term* t = capi::alloc_terms(terms);
  *names_out = capi::alloc_string_block(names);
  *terms_out = t;
  *n = terms.size();
  return 0;
}

int annotated_list_from(EnvRecord& r,
                        std::istream& in,
                        size_t* n,
                        zenlo_term** terms_out,
                        size_t** counts_out,
                        char*** annots_out) {
  if (n == nullptr || terms_out == nullptr || counts_out == nullptr
      || annots_out == nullptr) {
    throw capi::invalid_handle("output");
  }
  TermList terms;
  std::vector<AttributeList> attrs;
  read_smtlib2_annotated(r.tm(), in, terms, attrs);
  std::vector<std::string> flat;
  size_t* counts =
      static_cast<size_t*>(capi::alloc(sizeof(size_t) * terms.size()));
  for (size_t i = 0; i < attrs.size(); ++i) {
    counts[i] = attrs[i].size();
    for (const Attribute& a : attrs[i]) {
      flat.push_back(a.key);
      flat.push_back(a.value);
    }
  }
  *terms_out = capi::alloc_terms(terms);
  *annots_out = capi::alloc_string_block(flat);
  *counts_out = counts;
  *n = terms.size();
  return 0;
}

}  // namespace

extern "C" {

// ----------------------------------------------------------------------
// Reading
// ----------------------------------------------------------------------

zenlo_term zenlo_from_smtlib2(zenlo_env e, const char* data) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord& r) {
    std::istringstream in(capi::string_of(data));
    return capi::wrap(read_smtlib2_formula(r.tm(), in));
  });
}

zenlo_term zenlo_from_smtlib2_file(zenlo_env e, FILE* f) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord& r) {
    FileInBuf buf(capi::file_of(f));
    std::istream in(&buf);
    return capi::wrap(read_smtlib2_formula(r.tm(), in));
  });
}

zenlo_term zenlo_from_string(zenlo_env e, const char* data) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord& r) {
    return capi::wrap(read_smtlib2_string(r.tm(), capi::string_of(data)));
  });
}

zenlo_term zenlo_from_smtlib1(zenlo_env e, const char*) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord&) -> zenlo_term {
    throw Unsupported(kNoSmtLib1);
  });
}

zenlo_term zenlo_from_smtlib1_file(zenlo_env e, FILE*) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord&) -> zenlo_term {
    throw Unsupported(kNoSmtLib1);
  });
}

int zenlo_named_list_from_smtlib2(zenlo_env e,
                                  const char* data,
                                  size_t* n,
                                  char*** names_out,
                                  zenlo_term** terms_out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    std::istringstream in(capi::string_of(data));
    return named_list_from(r, in, n, names_out, terms_out);
  });
}

int zenlo_named_list_from_smtlib2_file(zenlo_env e,
                                       FILE* f,
                                       size_t* n,
                                       char*** names_out,
                                       zenlo_term** terms_out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    FileInBuf buf(capi::file_of(f));
    std::istream in(&buf);
    return named_list_from(r, in, n, names_out, terms_out);
  });
}

int zenlo_annotated_list_from_smtlib2(zenlo_env e,
                                      const char* data,
                                      size_t* n,
                                      zenlo_term** terms_out,
                                      size_t** counts_out,
                                      char*** annots_out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    std::istringstream in(capi::string_of(data));
    return annotated_list_from(r, in, n, terms_out, counts_out, annots_out);
  });
}

int zenlo_annotated_list_from_smtlib2_file(zenlo_env e,
                                           FILE* f,
                                           size_t* n,
                                           zenlo_term** terms_out,
                                           size_t** counts_out,
                                           char*** annots_out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    FileInBuf buf(capi::file_of(f));
    std::istream in(&buf);
    return annotated_list_from(r, in, n, terms_out, counts_out, annots_out);
  });
}

// ----------------------------------------------------------------------
// Writing
// ----------------------------------------------------------------------

char* zenlo_named_list_to_smtlib2(zenlo_env e,
                                  size_t n,
                                  char** names,
                                  zenlo_term* terms) {
  return capi::guarded(e, static_cast<char*>(nullptr), [&](EnvRecord& r) {
    return capi::alloc_string(
        write_smtlib2_annotated(r.tm(),
                                printer_config(r),
                                capi::terms_of(terms, n, "terms"),
                                named_attributes(n, names)));
  });
}

int zenlo_named_list_to_smtlib2_file(
    zenlo_env e, size_t n, char** names, zenlo_term* terms, FILE* out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    return write_file(write_smtlib2_annotated(r.tm(),
                                              printer_config(r),
                                              capi::terms_of(terms, n, "terms"),
                                              named_attributes(n, names)),
                      out);
  });
}

char* zenlo_annotated_list_to_smtlib2(
    zenlo_env e, size_t n, zenlo_term* terms, size_t* counts, char** annots) {
  return capi::guarded(e, static_cast<char*>(nullptr), [&](EnvRecord& r) {
    return capi::alloc_string(
        write_smtlib2_annotated(r.tm(),
                                printer_config(r),
                                capi::terms_of(terms, n, "terms"),
                                annotation_lists(n, counts, annots)));
  });
}

int zenlo_annotated_list_to_smtlib2_file(zenlo_env e,
                                         size_t n,
                                         zenlo_term* terms,
                                         size_t* counts,
                                         char** annots,
                                         FILE* out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    return write_file(
        write_smtlib2_annotated(r.tm(),
                                printer_config(r),
                                capi::terms_of(terms, n, "terms"),
                                annotation_lists(n, counts, annots)),
        out);
  });
}

char* zenlo_to_smtlib2(zenlo_env e, zenlo_term formula) {
  return zenlo_to_smtlib2_ext(e, formula, nullptr, nullptr, 0);
}

int zenlo_to_smtlib2_file(zenlo_env e, zenlo_term formula, FILE* out) {
  return zenlo_to_smtlib2_ext_file(e, formula, nullptr, nullptr, 0, out);
}

char* zenlo_to_smtlib2_ext(zenlo_env e,
                           zenlo_term formula,
                           const char* name,
                           const char* logic,
                           int use_defines) {
  return capi::guarded(e, static_cast<char*>(nullptr), [&](EnvRecord& r) {
    return capi::alloc_string(write_smtlib2_formula(r.tm(),
                                                    printer_config(r),
                                                    capi::term_of(formula),
                                                    name ? name : "",
                                                    logic ? logic : "",
                                                    use_defines != 0));
  });
}

int zenlo_to_smtlib2_ext_file(zenlo_env e,
                              zenlo_term formula,
                              const char* name,
                              const char* logic,
                              int use_defines,
                              FILE* out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    return write_file(write_smtlib2_formula(r.tm(),
                                            printer_config(r),
                                            capi::term_of(formula),
                                            name ? name : "",
                                            logic ? logic : "",
                                            use_defines != 0),
                      out);
  });
}

char* zenlo_to_smtlib2_term(zenlo_env e, zenlo_term t) {
  return capi::guarded(e, static_cast<char*>(nullptr), [&](EnvRecord& r) {
    return capi::alloc_string(
        write_smtlib2_term(r.tm(), printer_config(r), capi::term_of(t)));
  });
}

char* zenlo_to_smtlib1(zenlo_env e, zenlo_term) {
  return capi::guarded(
      e, static_cast<char*>(nullptr), [&](EnvRecord&) -> char* {
        throw Unsupported(kNoSmtLib1);
      });
}

int zenlo_to_smtlib1_file(zenlo_env e, zenlo_term, FILE*) {
  return capi::guarded(
      e, -1, [&](EnvRecord&) -> int { throw Unsupported(kNoSmtLib1); });
}

}  // extern "C"
