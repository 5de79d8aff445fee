#pragma once

// Makes every kind of item known to the keyed archives; called at start-up, any number of times.
void registerItemClasses();
