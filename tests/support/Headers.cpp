// The precompiled headers need a program that they are part of; it has no test.
