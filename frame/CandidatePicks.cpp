#include "frame/CandidatePicks.h"

CandidatePicks::~CandidatePicks() = default;
