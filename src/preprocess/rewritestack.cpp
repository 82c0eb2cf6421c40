#include "preprocess/rewritestack.h"

namespace zenlo {

RewriteStack::~RewriteStack() {
  // Destruction is not a pop: the components the steps would undo are
  // being torn down too, so nothing is undone.
  for (RewriteStep* s : d_steps) {
    if (s != nullptr) {
      s->destroy();
    }
  }
}

void RewriteStack::push_rewrite(const RewriteStep& step) {
  d_steps.push_back(step.new_copy());
  if (d_steps.back() == nullptr) {
    d_steps.pop_back();  // a null copy would read as a backtrack mark
  }
}

void RewriteStack::pop_backtrack_point() {
  while (!d_steps.empty()) {
    RewriteStep* s = d_steps.back();
    d_steps.pop_back();
    if (s == nullptr) {
      --d_marks;
      return;
    }
    // Newest first: a later step may rest on what an earlier one did.
    s->undo();
    s->destroy();
  }
}

}  // namespace zenlo
