#pragma once

/// Does what the system does when it starts: carries out the replacements that wait for it.
void restart();
