#pragma once

#include <memory>
#include <string>
#include <vector>

#include "solver/model_file/reading.h"

/// Readable elements: each kind of [[element]] table is turned into plain elements, a subroutine and its `par`. A kind
/// is one file that ends in a function returning its ReadableKind, and one row of the table in kinds.cpp.
namespace qvslv {

/// Reads the tables of one kind; made anew for each model file, so that it can count over all of them.
class KindReader {
public:
  virtual ~KindReader() = default;

  /// The plain elements that a table stands for, one or more. They will follow Model::elements as it is now, and get
  /// the table's name (and a number, if there are several) unless they have names already. Each has had set_defaults
  /// (elements/defaults.h), which fills in what follows from `par`.
  virtual std::vector<Element> read(const TableReader& table, Reading& reading) = 0;

  /// Called once the elements of all tables are there: fills in numbers and counts that need all of them, and may add
  /// elements.
  virtual void finish(Reading&) {}
};

/// One kind of [[element]].
struct ReadableKind {
  std::string name;               ///< value of the key `type`
  std::vector<std::string> keys;  ///< besides `name` and `type`
  std::unique_ptr<KindReader> (*make_reader)() = nullptr;
  /// Subroutines whose elements the kind numbers in `par` over the whole model. A plain element of one of them in the
  /// same model would claim the same numbers, so it is refused; `counted` is the reason that the message gives.
  std::vector<std::string> numbered_subroutines = {};
  std::string counted = {};
};

/// A reader that keeps nothing from one table to the next.
template <Element (*read_one)(const TableReader&, Reading&)>
class SingleReader : public KindReader {
public:
  std::vector<Element> read(const TableReader& table, Reading& reading) override { return {read_one(table, reading)}; }
};

template <class Reader>
std::unique_ptr<KindReader> make_kind_reader() {
  return std::make_unique<Reader>();
}

/// Reads the list [[element]] of a model file, adds the elements of equations behind them, and numbers all of them.
/// Call it when everything else of the file is read. Throws ModelError at the first mistake.
void read_elements(const TableReader& root, Reading& reading);

}  // namespace qvslv
