#pragma once

/// The decompiler speaks of models all the time: it sees the names of model/ as its own.
namespace tarnwick::model {}
namespace tarnwick::decompiler {
using namespace model;
}
