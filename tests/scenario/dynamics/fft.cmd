fft
/* A load history through a transfer function, and what fft refuses
input P r=4
1
2
4
8
fft P
p P
ls $fft_wsave
inputc H r=3
1 0
0.5 0.5
0 0
fft_helper H P HP
fft HP -inverse
p HP
fft P -inverse
p P
fft P -ooura
p P
fft P -ferziger
fft H
fft H -ferziger
fft H -ooura
fft P -ferziger -ooura
fft P -forward -inverse
fft
fft nothing
to_complex P Z
fft Z -ferziger
p Z
fft Z -ooura -inverse
p Z
fft_helper H P
fft_helper P P Q
fft_helper H H Q
fft_helper H HP Q
input long r=1 c=6
1 2 3 4 5 6
fft_helper H long Q
input two r=2 c=2
1 2
3 4
fft_helper H two Q
input one r=1
7
fft one
fft one -ooura -inverse
p one
ll
q
