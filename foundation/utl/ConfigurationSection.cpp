#include "foundation/utl/ConfigurationSection.h"

ConfigurationSection::~ConfigurationSection() = default;
