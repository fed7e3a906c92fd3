many
filein self
after
q
