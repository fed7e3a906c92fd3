fat
seti a v=4
readdb nosuchfile
q
