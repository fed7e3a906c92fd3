oscillator
filein
q
