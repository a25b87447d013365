#pragma once

#include "platform/Visibility.h"
#include "platform/fid/FIDParameter.h"
#include "platform/fid/UniqueWidgetID.h"

#include <cstddef>
#include <string>
#include <vector>

/// The parameters of a FID in the order of adding, and the control that raised it. A value
/// type with deep copies. Names may repeat.
class QFD_PUBLIC FIDParameterList {
  public:
    using const_iterator = std::vector<FIDParameter>::const_iterator;

    FIDParameterList();
    FIDParameterList(FIDParameterList const&) = default;
    FIDParameterList(FIDParameterList&&) noexcept = default;
    FIDParameterList& operator=(FIDParameterList const&) = default;
    FIDParameterList& operator=(FIDParameterList&&) noexcept = default;
    virtual ~FIDParameterList();

    void add(std::string const& name, std::string const& value);
    void add(FIDParameter const& parameter);

    /// The value of the first parameter of that name. False, and `value` untouched, if none.
    bool getValue(std::string const& name, std::string& value) const;

    /// Takes out every parameter of that name. True if there was one.
    bool removeParameter(std::string const& name);

    /// The control that raised the FID; number 0 if the host named none.
    UniqueWidgetID getSourceWidget() const { return source; }
    void setSourceWidget(UniqueWidgetID widget) { source = widget; }

    std::size_t size() const { return parameters.size(); }
    bool empty() const { return parameters.empty(); }
    const_iterator begin() const { return parameters.begin(); }
    const_iterator end() const { return parameters.end(); }

  private:
    std::vector<FIDParameter> parameters;
    UniqueWidgetID source;
};
