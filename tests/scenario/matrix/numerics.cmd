numerics
/* Quadrature, polynomials, user routines: results and refusals
gauss_pts p n=11
gauss_pts
input f r=4
0.5
1.5
1
3
input len r=2
2
4
gauss_int f len q n=3
gauss_int f nothing q n=2
tri_intpts p w n=4
p p
p w
tri_intpts p n=2
input a r=2 c=3
0.5
1
poly a d=1 n=3 option=1 c=1,0,-2
p a
poly a d=2 n=3 option=1 c=1,0,-2
poly nothing d=1
fortran_kind
series t x=0,1 inc=0.25
userf f=1 t t q
p q
userf f=2
q
