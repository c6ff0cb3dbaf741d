#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "solver/model/model.h"
#include "solver/model_file/toml_document.h"

namespace qvslv {

/// The named numbers of [parameters], and expressions that use them.
class Parameters {
public:
  Parameters();

  /// Values may be numbers or expressions of other parameters, in any order. Throws ModelError on a circle, on a
  /// name that expressions already use for something else, and on anything that is no number.
  explicit Parameters(const Value& table);

  /// A checked expression of time. Throws ModelError on a name nobody knows and on anything that does not compile.
  Expression expression(const std::string& text, const FilePosition& at) const;

  /// An expression that may also read variables, equations and marker quantities. It is not checked here, because what
  /// it may name is known only when the whole file is read (see check_expressions).
  Expression state_expression(const std::string& text, const FilePosition& at) const;

  /// Throws ModelError if expressions use a name already, for a parameter or as one of their own words. `what` is the
  /// kind of thing that is to get the name ("variable").
  void check_name_is_free(const std::string& name, const std::string& what, const FilePosition& at) const;

  /// Value of an expression that does not depend on time. Throws ModelError when it does, or is not finite.
  double number(const std::string& text, const FilePosition& at) const;

private:
  void check_names(const std::string& text, const FilePosition& at) const;
  [[noreturn]] void unknown_name(const std::string& name, const std::string& text, const FilePosition& at) const;

  std::shared_ptr<const std::map<std::string, double>> m_values;
};

}  // namespace qvslv
