#pragma once
#include <gtest/gtest.h>

#include "tests/support/standard.h"
