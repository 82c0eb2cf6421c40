// The undo trail shared by the theory solvers and the manager. A solver
// records each change of its state as a cell; opening a level remembers the
// number of cells, and cancelling to a level pops the younger cells one by
// one, youngest first, handing each to the solver's undo function. Nothing
// is copied at a level, and the vectors keep their capacity, so a search
// that goes up and down allocates only while it reaches new depths.
//
// The helper knows nothing of what a cell means. A solver that must undo
// to an arbitrary point (not a level) uses cut_to with a size it read
// earlier.
#ifndef ZENLO_THEORY_UNDOSTACK_H
#define ZENLO_THEORY_UNDOSTACK_H

#include <cstddef>
#include <vector>

namespace zenlo {

template <class Cell>
class UndoStack {
 public:
  void push(const Cell& cell) { d_cells.push_back(cell); }

  size_t size() const { return d_cells.size(); }

  bool empty() const { return d_cells.empty(); }

  const Cell& operator[](size_t i) const { return d_cells[i]; }

  const Cell& back() const { return d_cells.back(); }

  // After: cells pushed from now on belong to level num_levels().
  void new_level() { d_levels.push_back(d_cells.size()); }

  int num_levels() const { return static_cast<int>(d_levels.size()); }

  // Requires: 0 <= level < num_levels().
  // Returns: the number of cells when level `level` + 1 was opened.
  size_t level_start(int level) const { return d_levels[level]; }

  // Pops cells down to `size`, youngest first, calling undo(cell) on each;
  // levels opened above `size` are closed.
  template <class Fn>
  void cut_to(size_t size, Fn&& undo) {
    while (d_cells.size() > size) {
      Cell c = d_cells.back();
      d_cells.pop_back();
      undo(c);
    }
    while (!d_levels.empty() && d_levels.back() > size) {
      d_levels.pop_back();
    }
  }

  // Returns to level `level`: the cells of younger levels are undone and
  // num_levels() becomes `level`. A level not reached is a no-op.
  template <class Fn>
  void cancel_until(int level, Fn&& undo) {
    if (level < 0 || level >= num_levels()) {
      return;
    }
    size_t size = d_levels[level];
    while (d_cells.size() > size) {
      Cell c = d_cells.back();
      d_cells.pop_back();
      undo(c);
    }
    d_levels.resize(level);
  }

  void clear() {
    d_cells.clear();
    d_levels.clear();
  }

 private:
  std::vector<Cell> d_cells;
  std::vector<size_t> d_levels;
};

}  // namespace zenlo

#endif
