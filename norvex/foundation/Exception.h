#pragma once

#include <boost/assert/source_location.hpp>
#include <boost/current_function.hpp>
#include <boost/exception/error_info.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>
#include <boost/throw_exception.hpp>
#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "norvex/foundation/Export.h"
#include "norvex/foundation/PropertyTypes.h"

/// Where the macro stands: file, function signature and line.
#define NORVEX_HERE ::boost::source_location(__FILE__, __LINE__, BOOST_CURRENT_FUNCTION)

/// The one way in which the library throws. What is caught derives from the type of `exception`.
#define NORVEX_THROW(exception) ::boost::throw_exception((exception), NORVEX_HERE)

namespace Norvex {

/// Root of every failure. Details are tags, read with boost::get_error_info; what() says nothing about them.
class NORVEX_API Exception : public virtual std::exception, public virtual boost::exception {};

/// A sentence for a human reader.
using TagDescription = boost::error_info<struct DescriptionId, std::string>;
/// The subject of the failure, such as the name of a format or a path in a tree.
using TagDetails = boost::error_info<struct DetailsId, std::string>;
/// The text of the call stack at the throw.
using TagCallStack = boost::error_info<struct CallStackId, std::string>;

/// The calling thread's stack as text, a line per frame. Symbols come from the loaded objects; no process is
/// started to find them.
NORVEX_API std::string GetCallStack();

/// Attaches the call stack to an exception that can hold tags.
template <class E>
std::enable_if_t<std::is_base_of_v<Exception, E>, const E&> AddStack(const E& exception) {
    return exception << TagCallStack(GetCallStack());
}

/// A standard exception holds no tags: the stack goes behind its message, in a new exception.
template <class E>
std::enable_if_t<std::is_base_of_v<std::logic_error, E> || std::is_base_of_v<std::runtime_error, E>, E> AddStack(
    const E& exception) {
    return E(std::string(exception.what()) + '\n' + GetCallStack());
}

namespace Core {

class NORVEX_API CoreException : public virtual Exception {};

/// A failed access to a settings tree. It carries the tags below and a TagDescription, and of a missing child its path
/// as TagDetails.
class NORVEX_API PropertyException : public virtual CoreException {
public:
    using TagPropertyName = boost::error_info<struct PropertyNameId, std::string>;    ///< the node's name
    using TagPropertyType = boost::error_info<struct PropertyTypeId, PropertyTypes>;  ///< the node's type
    using TagMethodName = boost::error_info<struct MethodNameId, std::string>;        ///< the operation refused
};

/// An operation on a node of the wrong type. It carries the same tags and the call stack, and no description.
class NORVEX_API MethodIsNotApplicable : public virtual PropertyException {};

}  // namespace Core
}  // namespace Norvex
