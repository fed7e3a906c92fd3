job
form_m
form_k
nodes #=3
n=1
n=2 x=2
n=3 x=2 y=1.5

bcid r=0,0,1,1,1,1
n=1 r=1,1,1,1,1,1

num_eqs
truss m=1 n=3
m=1 e=100 a=3 mbar=2
n=1 nodes=1,2 mat=1
n=2 nodes=2,3 mat=1
n=3 nodes=1,3 mat=1

form_k -stiff -#eqs
print .load_pat
form_k -loads
print .load_pat
/* Bars of EA/L 150, 200 and 120 under the cosines 0.8, 0.6; each bar's half mass at its ends
print .kstr
form_m -diag
print .mstr
form_m
print .mstr
form_c -diag
print .cstr
elem_grp e=29 code=0
form_k
check_diag .kstr .kdiag_loc zero=1e-6 v=2
check_diag .kstr .kdiag_loc
check_diag .kstr
check_diag .kdiag_loc .kstr
check_diag nothing .kdiag_loc
check_diag .kstr .#eqs
print .kstr
form_G
form_lagrangeG
bcid r=1,1,1,1,1,1

form_k
form_k -#eqs
ls
quit
