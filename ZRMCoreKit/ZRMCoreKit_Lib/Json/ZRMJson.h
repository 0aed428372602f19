// The JSON types of the library. Key order is kept as inserted; numbers are int64, uint64 or
// double.
#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

using ZRMJsonValue = boost::json::value;
using ZRMJsonArray = boost::json::array;
using ZRMDictionary = boost::json::object;
