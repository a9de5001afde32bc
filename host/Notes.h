#pragma once

#include <ostream>

#include "host/Study.h"

/// Writes what the user should know about the reading of the study, one line a note.
inline void PrintNotes(const Study& study, std::ostream& err) {
    for (const std::string& note : study.notes) {
        err << note << '\n';
    }
}
