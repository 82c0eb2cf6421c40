// What preprocessing removed from the formulas, kept so that a model can
// give values to the removed symbols and a pop can take the removal back.
//
// A RewriteStep records that the term src() was replaced everywhere by
// dst(). The model store walks the steps from the newest to the oldest and
// gives src() the value of dst() in the model it is rebuilding; a step
// also knows how to undo its effect on the component that made it (a
// substitution table, a cache), which runs when the backtrack point it
// was made under is popped.
//
// The RewriteStack owns copies of the steps, in order, with a null entry
// for every open backtrack point. Its iterator passes over the nulls, so
// a walk from begin() to end() sees the steps from the oldest to the
// newest. The stack knows nothing of terms beyond the two pointers of a
// step; the components that push steps and the ModelStore that reads them
// are its clients.
#ifndef ZENLO_PREPROCESS_REWRITESTACK_H
#define ZENLO_PREPROCESS_REWRITESTACK_H

#include <cstddef>
#include <vector>

namespace zenlo {

class Term_;

class RewriteStep {
 public:
  virtual ~RewriteStep() = default;

  // Takes back what the step changed in the component that made it.
  // - After: the component no longer applies the step.
  virtual void undo() = 0;

  // Returns: the term that was replaced.
  virtual const Term_* src() const = 0;

  // Returns: what `src()` stands for now.
  virtual const Term_* dst() const = 0;

  // Returns: a heap copy that the stack owns and later passes to destroy().
  virtual RewriteStep* new_copy() const = 0;

  // Releases a copy made by new_copy().
  virtual void destroy() { delete this; }

  // Returns: whether the model must satisfy the step by an ad-hoc
  //   calculation (the value of src() is given, and the symbols below
  //   dst() are to be chosen), instead of giving src() the value of dst().
  virtual bool is_adhoc() const { return false; }

  // Returns: whether the step still takes part in model building.
  virtual bool is_active() const { return true; }
};

class RewriteStack {
 public:
  // Walks the steps, oldest first, skipping backtrack marks.
  class iterator {
   public:
    iterator(const std::vector<RewriteStep*>* steps, size_t cur)
        : d_steps(steps), d_cur(cur) {
      adjust();
    }

    RewriteStep* operator*() const { return (*d_steps)[d_cur]; }

    iterator& operator++() {
      ++d_cur;
      adjust();
      return *this;
    }

    bool operator==(const iterator& o) const { return d_cur == o.d_cur; }

    bool operator!=(const iterator& o) const { return d_cur != o.d_cur; }

    // Moves to position `cur` (the next step at or after it).
    void set_cur(size_t cur) {
      d_cur = cur;
      adjust();
    }

    // Skips backtrack marks.
    void adjust() {
      while (d_cur < d_steps->size() && (*d_steps)[d_cur] == nullptr) {
        ++d_cur;
      }
    }

   private:
    const std::vector<RewriteStep*>* d_steps;
    size_t d_cur;
  };

  RewriteStack() = default;
  ~RewriteStack();
  RewriteStack(const RewriteStack&) = delete;
  RewriteStack& operator=(const RewriteStack&) = delete;

  // After: a copy of `step` (new_copy) is the newest step.
  void push_rewrite(const RewriteStep& step);

  // After: the steps pushed from now on go at the matching pop.
  void push_backtrack_point() {
    d_steps.push_back(nullptr);
    ++d_marks;
  }

  // Pops the steps down to the newest backtrack mark (or the bottom),
  // newest first, calling undo() then destroy() on each, and the mark.
  void pop_backtrack_point();

  iterator begin() const { return iterator(&d_steps, 0); }

  iterator end() const { return iterator(&d_steps, d_steps.size()); }

  // Returns: the number of steps, marks not counted.
  size_t num_steps() const { return d_steps.size() - d_marks; }

  size_t num_backtrack_points() const { return d_marks; }

 private:
  std::vector<RewriteStep*> d_steps;
  size_t d_marks = 0;
};

}  // namespace zenlo

#endif
